#include "HttpPassword.h"

#include <QByteArray>

#include <algorithm>

namespace host {

namespace {

bool isSame(const std::string& one, const std::string& other) {
    if (one.size() != other.size())
        return false;
    unsigned difference = 0;
    for (std::size_t i = 0; i < one.size(); ++i)
        difference |=
            static_cast<unsigned char>(one[i]) ^ static_cast<unsigned>(static_cast<unsigned char>(other[i]));
    return difference == 0;
}

// The scheme in small letters.
std::string schemeOf(const std::string& authorization) {
    std::string scheme = authorization.substr(0, authorization.find(' '));
    std::transform(scheme.begin(), scheme.end(), scheme.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return scheme;
}

std::string credentialsOf(const std::string& authorization) {
    const std::size_t gap = authorization.find(' ');
    const std::size_t first = gap == std::string::npos ? gap : authorization.find_first_not_of(' ', gap);
    return first == std::string::npos ? std::string() : authorization.substr(first);
}

// Behind the colon of "user:password".
std::string passwordOf(const std::string& basicCredentials) {
    const auto decoded = QByteArray::fromBase64Encoding(QByteArray::fromStdString(basicCredentials),
                                                        QByteArray::AbortOnBase64DecodingErrors);
    if (decoded.decodingStatus != QByteArray::Base64DecodingStatus::Ok)
        return {};
    const std::string text = decoded.decoded.toStdString();
    const std::size_t colon = text.find(':');
    return colon == std::string::npos ? std::string() : text.substr(colon + 1);
}

} // namespace

bool bringsPassword(const HttpRequest& request, const std::string& password) {
    const std::string authorization = request.header("authorization");
    const std::string scheme = schemeOf(authorization);
    if (scheme == "bearer")
        return isSame(credentialsOf(authorization), password);
    return scheme == "basic" && isSame(passwordOf(credentialsOf(authorization)), password);
}

HttpResponse askForPassword() {
    HttpResponse response = textResponse(401, "this page needs the password of [http]\n");
    response.headers.emplace_back("WWW-Authenticate", "Basic realm=\"sbus-host\", Bearer");
    return response;
}

} // namespace host
