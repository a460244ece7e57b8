#include "services/http/HttpPassword.h"
#include "services/http/HttpRoutes.h"
#include "services/http/RestingPage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using host::HttpRequest;
using host::HttpResponse;
using testing::Contains;
using testing::Pair;
using namespace std::chrono_literals;

namespace {

HttpRequest requestFor(const char* method, const char* path) {
    HttpRequest request;
    request.method = method;
    request.path = path;
    return request;
}

bool isLetIn(const std::string& authorization) {
    HttpRequest request;
    request.headers["authorization"] = authorization;
    return bringsPassword(request, "open sesame");
}

} // namespace

TEST(HttpRoutes, GiveThePageOfThePath) {
    host::HttpRoutes routes;
    routes.add("/a", [](const HttpRequest& request) { return host::textResponse(200, request.query); });
    routes.add("/b", [](const HttpRequest&) { return host::textResponse(503, "busy"); });
    HttpRequest asked = requestFor("GET", "/a");
    asked.query = "x=1";
    EXPECT_EQ(*routes.answer(asked).body, "x=1");
    EXPECT_EQ(routes.answer(requestFor("HEAD", "/b")).status, 503U);
    const HttpResponse none = routes.answer(requestFor("GET", "/c"));
    EXPECT_EQ(none.status, 404U);
    EXPECT_EQ(*none.body, "not found; there is /a /b\n");
}

TEST(HttpRoutes, NameTheMethodsThatArePossible) {
    host::HttpRoutes routes;
    routes.add("/a", [](const HttpRequest&) { return host::textResponse(200, ""); });
    for (const char* const method : {"POST", "PUT", "DELETE", "get", ""}) {
        const HttpResponse refusal = routes.answer(requestFor(method, "/a"));
        EXPECT_EQ(refusal.status, 405U) << method;
        EXPECT_THAT(refusal.headers, Contains(Pair("Allow", "GET, HEAD")));
    }
}

TEST(HttpPassword, ComesAsTokenOrOfAnyUser) {
    EXPECT_TRUE(isLetIn("Bearer open sesame"));
    EXPECT_TRUE(isLetIn("bearer   open sesame"));
    EXPECT_TRUE(isLetIn("Basic cHJvbWV0aGV1czpvcGVuIHNlc2FtZQ==")); // prometheus:open sesame
    EXPECT_TRUE(isLetIn("BASIC Om9wZW4gc2VzYW1l"));                 // :open sesame
}

TEST(HttpPassword, IsNoOtherOne) {
    for (const char* const authorization :
         {"", "Bearer", "Bearer ", "Bearer open", "Bearer open sesame ", "Bearer Open sesame", "open sesame",
          "Basic", "Basic !!!", "Basic cHJvbWV0aGV1cw==", "Basic cHJvbWV0aGV1czpvcGVu", "Digest open sesame",
          "Basic open sesame"})
        EXPECT_FALSE(isLetIn(authorization)) << authorization;
    EXPECT_FALSE(bringsPassword(requestFor("GET", "/metrics"), "open sesame"));
    EXPECT_EQ(host::askForPassword().status, 401U);
}

TEST(RestingPage, IsMadeAgainAfterThreeTimesAsLongAsItTook) {
    host::RestingPage::Clock::time_point now{1000s};
    int made = 0;
    host::RestingPage page(
        [&] {
            now += 100ms; // which it takes
            return std::to_string(++made);
        },
        [&now] { return now; });
    const HttpResponse::Body first = page.get();
    EXPECT_EQ(*first, "1");
    now += 299ms;
    EXPECT_EQ(page.get(), first) << "the same memory for all";
    now += 1ms;
    EXPECT_EQ(*page.get(), "2");
    EXPECT_EQ(*first, "1") << "who still reads it keeps it";
}
