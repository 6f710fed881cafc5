#include "OpacServer.h"

#include "AppError.h"
#include "OpacCatalogue.h"
#include "OpacPages.h"

#include <httplib.h>

namespace {

void reply(httplib::Response &res, const QString &html, int status = 200)
{
    res.status = status;
    res.set_header("X-Content-Type-Options", "nosniff");
    res.set_header("Content-Security-Policy", "default-src 'none'; style-src 'unsafe-inline'; form-action 'self'");
    res.set_content(html.toStdString(), "text/html; charset=utf-8");
}

// Runs a page's work; a database that fails is a plain page (and the server goes on).
template <typename Work> void answer(httplib::Response &res, Work &&work)
{
    try {
        work();
    } catch (const AppError &) {
        reply(res, OpacPages::message(QStringLiteral("The catalogue is not available"),
                                      QStringLiteral("The library's catalogue cannot be read just now. Please try again in a moment, or ask at the library.")),
              503);
    }
}

QString parameter(const httplib::Request &req, const char *name)
{
    return req.has_param(name) ? QString::fromUtf8(req.get_param_value(name).c_str()) : QString();
}

} // namespace

OpacServer::OpacServer() : server_(std::make_unique<httplib::Server>())
{
    const auto search = [](const httplib::Request &req, httplib::Response &res) {
        answer(res, [&] {
            // A text with a NUL or more than a search box holds is searched for as far as it goes.
            QString typed = parameter(req, "q");
            typed.truncate(200);
            typed.remove(QChar(u'\0'));
            bool number = false;
            const int page = std::clamp(parameter(req, "page").toInt(&number), 1, 10000);
            reply(res, OpacPages::search(typed, OpacCatalogue::search(typed, page), page));
        });
    };
    server_->Get("/", search);
    server_->Get("/search", search);
    server_->Get(R"(/title/(\d{1,9}))", [](const httplib::Request &req, httplib::Response &res) {
        answer(res, [&] {
            const auto details = OpacCatalogue::details(QString::fromStdString(req.matches[1]).toInt());
            if (!details) {
                reply(res, OpacPages::message(QStringLiteral("Not in the catalogue"), QStringLiteral("The library has no such title.")), 404);
                return;
            }
            reply(res, OpacPages::title(*details));
        });
    });
    // What the server itself refuses (no such page, an address longer than any search) is a page too.
    server_->set_error_handler([](const httplib::Request &, httplib::Response &res) {
        if (!res.body.empty())
            return;
        if (res.status == 404)
            reply(res, OpacPages::message(QStringLiteral("Not in the catalogue"), QStringLiteral("There is no such page.")), 404);
        else
            reply(res, OpacPages::message(QStringLiteral("Search the library"), QStringLiteral("That search cannot be read; please type a shorter one.")),
                  res.status);
    });
}

OpacServer::~OpacServer() { stop(); }

int OpacServer::bind(const QString &address, int port)
{
    if (port == 0)
        return server_->bind_to_any_port(address.toStdString());
    return server_->bind_to_port(address.toStdString(), port) ? port : -1;
}

void OpacServer::run() { server_->listen_after_bind(); }

void OpacServer::stop() { server_->stop(); }
