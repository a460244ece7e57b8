#pragma once

#include "HttpRoutes.h"
#include "HttpServer.h"
#include "MetricsFormat.h"
#include "RestingPage.h"
#include "services/RunningSite.h"
#include "services/Service.h"
#include "site/HttpSettings.h"

#include <atomic>

namespace host {

// The site's figures over HTTP: /metrics for Prometheus, /healthz and /readyz for whoever supervises the
// process. The pages are made on the server's thread alone.
//
// Figures: "clients" are connected, "requests" were answered by a page, "unreadable" were none or came too
// slowly, "turned away" are clients for which there was no room.
class HttpService : public Service {
public:
    explicit HttpService(const HttpSettings& httpSettings);
    ~HttpService() override;

    std::string name() const override { return "http"; }
    std::string start(RunningSite& runningSite) override;
    void stop() override;
    std::vector<ServiceFigure> figures() const override;

    // Where it listens.
    std::uint16_t port() const { return server->port(); }

private:
    void addPages();
    HttpResponse metrics(const HttpRequest& request);
    HttpResponse readiness();
    std::string makeMetrics(MetricsFormat format) const;

    const HttpSettings settings;
    RunningSite* site = nullptr; // from start() on
    qint64 startedMs = 0;        // since 1970
    std::string password;        // empty: none is asked for
    std::atomic<bool> isStopping{false};

    // The server thread's.
    HttpRoutes routes;
    RestingPage inPrometheus;
    RestingPage inOpenMetrics;
    bool isReady = false; // once and for all

    std::unique_ptr<HttpServer> server; // last: its thread works on all of the above
};

// Tells an error for each secret and certificate that cannot be read.
void checkHttpFiles(const HttpSettings& settings, Findings& findings);

} // namespace host
