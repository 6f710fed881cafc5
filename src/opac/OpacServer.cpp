#include "OpacServer.h"

#include "AppError.h"
#include "Clock.h"
#include "MemberPin.h"
#include "Reservations.h"
#include "OpacCatalogue.h"
#include "OpacPages.h"

#include <httplib.h>

#include <sys/resource.h>
#include <unistd.h>

namespace {

// The requests are answered on threads that give way to a desk working on the same computer: a
// class searching at once must not slow the counter down.
class YieldingQueue : public httplib::TaskQueue {
public:
    YieldingQueue() : pool_(CPPHTTPLIB_THREAD_POOL_COUNT) {}
    void enqueue(std::function<void()> fn) override
    {
        pool_.enqueue([fn = std::move(fn)] {
            thread_local const bool lowered = setpriority(PRIO_PROCESS, id_t(gettid()), 10) == 0;
            (void)lowered;
            fn();
        });
    }
    void shutdown() override { pool_.shutdown(); }

private:
    httplib::ThreadPool pool_;
};

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

// A list's id or a page number from the address: a whole number, anything else 0.
int number(const httplib::Request &req, const char *name)
{
    bool ok = false;
    const int n = parameter(req, name).toInt(&ok);
    return ok && n > 0 ? n : 0;
}

int pageOf(const httplib::Request &req) { return std::clamp(number(req, "page"), 1, 10000); }

// A cookie of the request, or empty.
QString cookie(const httplib::Request &req, const QString &name)
{
    for (const QString &part : QString::fromStdString(req.get_header_value("Cookie")).split(QLatin1Char(';'))) {
        const QString p = part.trimmed();
        if (p.startsWith(name + QLatin1Char('=')))
            return p.mid(name.size() + 1);
    }
    return QString();
}

void setCookie(httplib::Response &res, const QString &name, const QString &value)
{
    res.set_header("Set-Cookie", (name + QLatin1Char('=') + value + QStringLiteral("; Path=/; HttpOnly; SameSite=Strict")).toStdString());
}

void redirect(httplib::Response &res, const char *to)
{
    res.status = 303;
    res.set_header("Location", to);
}

const QString SessionCookie = QStringLiteral("opac_session");
const QString FormCookie = QStringLiteral("opac_form");

} // namespace

OpacServer::OpacServer(int refreshSeconds) : server_(std::make_unique<httplib::Server>()), catalogue_(refreshSeconds)
{
    const auto search = [this](const httplib::Request &req, httplib::Response &res) {
        answer(res, [&] {
            // A text with a NUL or more than a search box holds is searched for as far as it goes.
            OpacPages::SearchForm form;
            form.filter.text = parameter(req, "q").left(200).remove(QChar(u'\0'));
            form.filter.category = number(req, "cat");
            form.filter.subCategory = number(req, "sub");
            form.filter.language = number(req, "lang");
            form.filter.series = number(req, "series");
            form.categories = catalogue_.choices(OpacCatalogue::List::Categories);
            form.subCategories = catalogue_.choices(OpacCatalogue::List::SubCategories);
            form.languages = catalogue_.choices(OpacCatalogue::List::Languages);
            form.series = catalogue_.choices(OpacCatalogue::List::Series);
            const int page = pageOf(req);
            reply(res, OpacPages::search(form, catalogue_.search(form.filter, page), page));
        });
    };
    server_->new_task_queue = [] { return new YieldingQueue; };
    server_->Get("/", search);
    server_->Get("/search", search);
    server_->Get("/new", [this](const httplib::Request &req, httplib::Response &res) {
        answer(res, [&] {
            const int page = pageOf(req);
            reply(res, OpacPages::newTitles(catalogue_.newInTheLibrary(page), page));
        });
    });
    server_->Get("/popular", [this](const httplib::Request &, httplib::Response &res) {
        answer(res, [&] {
            QDate since;
            const auto ranked = catalogue_.mostBorrowed(&since);
            reply(res, OpacPages::mostBorrowed(ranked, since));
        });
    });
    server_->Get(R"(/title/(\d{1,9}))", [this](const httplib::Request &req, httplib::Response &res) {
        answer(res, [&] {
            const auto details = catalogue_.details(QString::fromStdString(req.matches[1]).toInt());
            if (!details) {
                reply(res, OpacPages::message(QStringLiteral("Not in the catalogue"), QStringLiteral("The library has no such title.")), 404);
                return;
            }
            const auto session = sessions_.find(cookie(req, SessionCookie), Clock::now());
            reply(res, OpacPages::title(*details, session ? session->formToken : QString()));
        });
    });
    server_->Post("/reserve", [this](const httplib::Request &req, httplib::Response &res) {
        answer(res, [&] {
            const auto session = signedInForm(req, res);
            if (!session)
                return;
            const auto details = catalogue_.details(number(req, "item"));
            const auto copy = details ? details->toReserve() : std::nullopt;
            if (!copy) {
                reply(res, OpacPages::message(QStringLiteral("Not reserved"), QStringLiteral("A copy of this title is on the shelf (or it is for "
                                                                                              "reference only): ask for it at the library.")),
                      409);
                return;
            }
            // The desk's own rule and limits.
            ReservationRequest request{session->member.type, session->member.id, copy->itemID, copy->accession, 0, 0};
            ReservationLimits(&request.maxItemReservations, &request.maxMemberReservations);
            const QString refusal = PlaceReservation(request);
            if (!refusal.isEmpty()) {
                reply(res, OpacPages::message(QStringLiteral("Not reserved"), refusal + QLatin1Char('.')), 409);
                return;
            }
            redirect(res, "/account");
        });
    });
    server_->Post("/cancel", [this](const httplib::Request &req, httplib::Response &res) {
        answer(res, [&] {
            const auto session = signedInForm(req, res);
            if (!session)
                return;
            CancelOwnReservation(number(req, "reservation"), session->member.type, session->member.id);
            redirect(res, "/account");
        });
    });
    server_->Get("/signin", [](const httplib::Request &, httplib::Response &res) {
        answer(res, [&] {
            const QString token = OpacSessions::randomToken();
            setCookie(res, FormCookie, token);
            reply(res, OpacPages::signIn(token, QString()));
        });
    });
    server_->Post("/signin", [this](const httplib::Request &req, httplib::Response &res) {
        answer(res, [&] {
            // The form's token must be the one this browser was given with the form.
            const QString token = parameter(req, "token");
            const QString given = cookie(req, FormCookie);
            const QString next = OpacSessions::randomToken();
            setCookie(res, FormCookie, next);
            if (token.isEmpty() || token != given) {
                reply(res, OpacPages::signIn(next, QStringLiteral("Please sign in from this page.")), 400);
                return;
            }
            const QString number = parameter(req, "number").left(20).remove(QChar(u'\0'));
            if (!sessions_.mayTry(number, QString::fromStdString(req.remote_addr), Clock::now())) {
                reply(res, OpacPages::signIn(next, QStringLiteral("Too many tries: please wait a minute and try again.")), 429);
                return;
            }
            // An unknown number and a wrong PIN get the same answer.
            const auto member = OpacAccount::find(number);
            if (!member || !MemberPin::matches(member->type, member->id, parameter(req, "pin").left(8))) {
                reply(res, OpacPages::signIn(next, QStringLiteral("The number or the PIN is not right.")), 401);
                return;
            }
            setCookie(res, SessionCookie, sessions_.open(*member, Clock::now()));
            redirect(res, "/account");
        });
    });
    server_->Get("/account", [this](const httplib::Request &req, httplib::Response &res) {
        answer(res, [&] {
            const auto session = sessions_.find(cookie(req, SessionCookie), Clock::now());
            if (!session) {
                redirect(res, "/signin");
                return;
            }
            reply(res, OpacPages::account(session->member, OpacAccount::loans(session->member, Clock::today()), OpacAccount::fines(session->member),
                                          OpacAccount::reservations(session->member), session->formToken));
        });
    });
    server_->Post("/signout", [this](const httplib::Request &req, httplib::Response &res) {
        const QString id = cookie(req, SessionCookie);
        const auto session = sessions_.find(id, Clock::now());
        if (session && parameter(req, "token") == session->formToken)
            sessions_.close(id);
        setCookie(res, SessionCookie, QString());
        redirect(res, "/");
    });
    // What the server itself refuses (no such page, an address longer than any search) is a page too.
    server_->set_error_handler([](const httplib::Request &, httplib::Response &res) {
        if (!res.body.empty() || res.status == 303)
            return;
        if (res.status == 404)
            reply(res, OpacPages::message(QStringLiteral("Not in the catalogue"), QStringLiteral("There is no such page.")), 404);
        else
            reply(res, OpacPages::message(QStringLiteral("Search the library"), QStringLiteral("That search cannot be read; please type a shorter one.")),
                  res.status);
    });
}

OpacServer::~OpacServer() { stop(); }

std::optional<OpacSessions::Session> OpacServer::signedInForm(const httplib::Request &req, httplib::Response &res)
{
    const auto session = sessions_.find(cookie(req, SessionCookie), Clock::now());
    if (!session || parameter(req, "token") != session->formToken) {
        redirect(res, "/signin");
        return std::nullopt;
    }
    return session;
}

int OpacServer::bind(const QString &address, int port)
{
    if (port == 0)
        return server_->bind_to_any_port(address.toStdString());
    return server_->bind_to_port(address.toStdString(), port) ? port : -1;
}

void OpacServer::run() { server_->listen_after_bind(); }

void OpacServer::stop() { server_->stop(); }
