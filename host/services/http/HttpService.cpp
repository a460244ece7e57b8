#include "HttpService.h"

#include "HttpPassword.h"
#include "PointMetrics.h"
#include "SiteMetrics.h"
#include "runtime/FailureText.h"
#include "runtime/FirstPolls.h"
#include "runtime/RtuOutcome.h"
#include "runtime/Secret.h"

#include <ProgramVersion.h>
#include <TextFile.h>

#include <QDateTime>

namespace host {

namespace {

constexpr std::uintmax_t longestCertificate = 1'048'576; // bytes

HttpServer::Settings serverSettings() {
    HttpServer::Settings settings;
    settings.clients = mostHttpClients;
    return settings;
}

std::string addressText(const HttpSettings& settings, std::uint16_t port) {
    ListenAddress address = settings.listen;
    address.port = port;
    return (settings.tls ? "https://" : "http://") + toText(address);
}

} // namespace

HttpService::HttpService(const HttpSettings& httpSettings)
    : settings(httpSettings), inPrometheus([this] { return makeMetrics(MetricsFormat::Prometheus); }),
      inOpenMetrics([this] { return makeMetrics(MetricsFormat::OpenMetrics); }),
      server(std::make_unique<HttpServer>(
          serverSettings(), [this](const HttpRequest& request) { return routes.answer(request); })) {
    addPages();
}

HttpService::~HttpService() {
    HttpService::stop();
}

std::string HttpService::start(RunningSite& runningSite) {
    site = &runningSite;
    startedMs = QDateTime::currentMSecsSinceEpoch();
    if (settings.password) {
        const Secret secret = readSecret(*settings.password);
        if (!secret.text)
            return "[http] has no password: " + secret.fault;
        password = *secret.text;
    }
    std::optional<HttpServer::Identity> identity;
    if (settings.tls) {
        const Secret key = readSecret(settings.tls->key);
        if (!key.text)
            return "[http] has no key: " + key.fault;
        identity = HttpServer::Identity{settings.tls->certificate, *key.text};
    }
    const std::string fault = server->start(settings.listen, identity);
    if (!fault.empty())
        return "[http] " + fault;
    site->messages.tell("metrics at " + addressText(settings, server->port()) + "/metrics");
    return {};
}

void HttpService::stop() {
    isStopping.store(true, std::memory_order_relaxed);
    server->stop();
}

std::vector<ServiceFigure> HttpService::figures() const {
    const HttpServer::Figures figures = server->figures();
    return {{"clients", figures.clients},
            {"requests", figures.requests},
            {"unreadable", figures.unreadable},
            {"turned away", figures.turnedAway}};
}

void HttpService::addPages() {
    routes.add("/healthz", [](const HttpRequest&) { return textResponse(200, "the host answers\n"); });
    routes.add("/readyz", [this](const HttpRequest&) { return readiness(); });
    routes.add("/metrics", [this](const HttpRequest& request) { return metrics(request); });
}

HttpResponse HttpService::metrics(const HttpRequest& request) {
    if (!password.empty() && !bringsPassword(request, password))
        return askForPassword();
    const MetricsFormat format = metricsFormatFor(request.header("accept"));
    HttpResponse response;
    response.contentType = contentTypeOf(format);
    response.body = (format == MetricsFormat::OpenMetrics ? inOpenMetrics : inPrometheus).get();
    return response;
}

HttpResponse HttpService::readiness() {
    std::string waiting;
    if (!isReady)
        for (const Channel* const channel : linesBeforeFirstPoll(site->figures()))
            waiting += nameOf(*channel, nullptr) + ": its first poll has not ended\n";
    isReady = waiting.empty();
    return isReady ? textResponse(200, "ready\n") : textResponse(503, waiting);
}

std::string HttpService::makeMetrics(MetricsFormat format) const {
    SiteFigures figures = site->figures();
    SiteMetrics metrics;
    metrics.site = site->site.name;
    metrics.version = release::version();
    metrics.commit = release::commit();
    metrics.startedMs = startedMs;
    metrics.rtus = collectOutcomes(figures.rtus, site->values);
    metrics.channels = std::move(figures.channels);
    metrics.services = site->serviceFigures();
    metrics.log = CLogger::GetInstance()->figures();
    metrics.changes = site->values.changeCount();
    metrics.nowMs = QDateTime::currentMSecsSinceEpoch();
    MetricsText text(format);
    writeSiteMetrics(text, metrics);
    if (settings.hasPoints)
        writePointMetrics(text, site->site, site->values,
                          [this] { return isStopping.load(std::memory_order_relaxed); });
    return text.finish();
}

void checkHttpFiles(const HttpSettings& settings, Findings& findings) {
    const std::string remedy = "the host does not start without it";
    if (settings.password)
        if (const Secret secret = readSecret(*settings.password); !secret.text)
            findings.error(settings.password->place, secret.fault, remedy);
    if (!settings.tls)
        return;
    if (const Secret key = readSecret(settings.tls->key); !key.text)
        findings.error(settings.tls->key.place, key.fault, remedy);
    const text::FileText certificate = text::readTextFile(settings.tls->certificate, longestCertificate);
    if (!certificate.contents)
        findings.error(settings.tls->key.place,
                       "certificate \"" + settings.tls->certificate + "\" " + certificate.fault, remedy);
}

} // namespace host
