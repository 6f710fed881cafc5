#pragma once

#include "OpacCatalogue.h"
#include "OpacSessions.h"

#include <QString>

#include <memory>
#include <optional>

namespace httplib {
class Server;
struct Request;
struct Response;
}

/// The web catalogue's HTTP server: "/" and "/search" (the search page), "/title/N" (a title and its
/// copies), "/new", "/popular", and for members "/signin", "/account" and "/signout". Requests are
/// answered on the server's own threads, each through a data object of its own; a failure is a
/// plain page, never an engine's words. Forms that change something are POSTed with a token; the
/// session cookie is HttpOnly and SameSite=Strict.
class OpacServer {
public:
    /// refreshSeconds: how old the catalogue's index may grow before it is read again (0: every request).
    explicit OpacServer(int refreshSeconds = 60);
    ~OpacServer();

    /// Binds address:port (port 0: any free one); the port bound, or -1 when it cannot.
    int bind(const QString &address, int port);
    /// Answers requests until stop() (blocks).
    void run();
    void stop();

private:
    /// The session of a POSTed form that carries its session's token; else empty, the browser sent to sign in.
    std::optional<OpacSessions::Session> signedInForm(const httplib::Request &req, httplib::Response &res);

    std::unique_ptr<httplib::Server> server_;
    OpacSessions sessions_;
    OpacCatalogue catalogue_;
};
