// The web catalogue served for real on 127.0.0.1 and asked over HTTP, on each engine.
#include "Clock.h"
#include "Engine.h"
#include "MemberPin.h"
#include "OpacCatalogue.h"
#include "OpacServer.h"
#include "PhysicalConnection.h"
#include "Recordset.h"
#include "TestDatabases.h"

#include <QElapsedTimer>
#include <QUrl>

#include <httplib.h>

#include <thread>

namespace {

// The sign-in form's token and cookie, as a browser gets them.
struct Form {
    std::string token, cookie;
};
Form signInForm(httplib::Client &client)
{
    const auto res = client.Get("/signin");
    Form f;
    const std::string body = res ? res->body : std::string();
    const auto at = body.find("name=\"token\" value=\"");
    if (at != std::string::npos)
        f.token = body.substr(at + 20, 64);
    f.cookie = res ? res->get_header_value("Set-Cookie").substr(0, res->get_header_value("Set-Cookie").find(';')) : std::string();
    return f;
}
// The session cookie a response sets (it also renews the form's).
std::string sessionCookie(const httplib::Result &res)
{
    for (size_t i = 0; res && i < res->get_header_value_count("Set-Cookie"); ++i)
        if (const std::string c = res->get_header_value("Set-Cookie", i); c.rfind("opac_session=", 0) == 0)
            return c;
    return std::string();
}

class OpacServerTest : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        library("Insert into tblLibAuthors (AuthorSurname, AuthorFirstName) values ('Brink', 'André')");
        // Three copies, one out; one reference copy; one title with its only copy out; a removed copy.
        for (const char *a : {"A1", "A2", "A3"})
            library(QString("Insert into tblLibItems (AccessionID, Title, Author1, YearPublished, ClassificationNo) values ('%1', "
                            "'Kennis van die aand', 1, 1973, '839.36')").arg(a));
        library("Insert into tblLibItems (AccessionID, Title, ReferenceItem) values ('R1', 'Atlas of Africa', true)");
        library("Insert into tblLibItems (AccessionID, Title) values ('B1', 'Kennis is mag')");
        library("Insert into tblLibItems (AccessionID, Title, PhasedOut) values ('X1', 'Kennis verloor', true)");
        library("Insert into tblLibTransactions (AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate) values ('A2', 'L', 1, 2, #2026-11-20#, #2026-12-04#)");
        library("Insert into tblLibTransactions (AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate) values ('B1', 'L', 1, 5, #2026-11-20#, #2026-12-07#)");
        port_ = server_.bind("127.0.0.1", 0);
        ASSERT_GT(port_, 0);
        thread_ = std::thread([this] { server_.run(); });
        client_ = std::make_unique<httplib::Client>("127.0.0.1", port_);
        client_->set_read_timeout(10, 0);
    }
    void TearDown() override
    {
        server_.stop();
        if (thread_.joinable())
            thread_.join();
        DatabaseTest::TearDown();
    }
    QString page(const std::string &path, int *status = nullptr)
    {
        const auto res = client_->Get(path.c_str());
        if (!res)
            return "no answer";
        if (status)
            *status = res->status;
        return QString::fromStdString(res->body);
    }
    httplib::Result signIn(const std::string &number, const std::string &pin, bool withToken = true)
    {
        const Form form = signInForm(*client_);
        httplib::Headers headers{{"Cookie", form.cookie}};
        httplib::Params params{{"number", number}, {"pin", pin}};
        if (withToken)
            params.emplace("token", form.token);
        return client_->Post("/signin", headers, params);
    }
    // A school with two current learners (PINs 2468 and 1357), one who has left, and loan settings.
    void members()
    {
        central("Insert into Learner_Info (ID, AccessionNo, SName, FName, Grade, Class, Status) values (1, 'L001', 'Dlamini', 'Zola', 8, 1, 'C')");
        central("Insert into Learner_Info (ID, AccessionNo, SName, FName, Grade, Class, Status) values (2, 'L002', 'Naidoo', 'Kavi', 8, 1, 'C')");
        central("Insert into Learner_Info (ID, AccessionNo, SName, FName, Grade, Class, Status) values (3, 'L003', 'Left', 'Long', 8, 1, 'L')");
        library("Insert into tblLibSettings (LoanType, UserCat, LoanPeriod, FineAmount, FineInterval, MaxItems, ExtDays, MaxExt, MaxRes, MaxUserRes) "
                "values ('N', 'L', 14, 1.5, 1, 5, 7, 1, 2, 3)");
        MemberPin::set("L", 1, "2468");
        MemberPin::set("L", 2, "1357");
        MemberPin::set("L", 3, "1111");
    }
    static std::string query(const QString &typed) { return "/search?q=" + QUrl::toPercentEncoding(typed).toStdString(); }

    OpacServer server_{0};
    std::thread thread_;
    int port_ = 0;
    std::unique_ptr<httplib::Client> client_;
};

} // namespace

// A search lists each title once with its availability counted over its copies; removed copies
// are never shown; the title's page lists every copy with its state.
TEST_F(OpacServerTest, TitlesShowWhetherTheyAreOnTheShelf)
{
    const QString found = page(query("kennis"));
    EXPECT_TRUE(found.contains("2 titles; 1 to 2 shown.")) << found.toStdString();
    EXPECT_TRUE(found.contains(QString::fromUtf8("Kennis van die aand</a><br>Brink, André, 1973 &middot; Shelf 839.36<br><span class=\"available\">2 of 3 on the shelf")));
    EXPECT_TRUE(found.contains("Kennis is mag</a>")) << found.toStdString();
    EXPECT_TRUE(found.contains("Due back 2026-12-07"));
    EXPECT_FALSE(found.contains("verloor")) << "a removed copy was shown";
    EXPECT_TRUE(page(query("atlas")).contains("Reference only"));
    EXPECT_TRUE(page(query("A2")).contains("Kennis van die aand")) << "by accession number";
    EXPECT_TRUE(page(query("brink")).contains("Kennis van die aand")) << "by author";

    const QString title = page("/title/1");
    EXPECT_TRUE(title.contains("<tr><td>A1</td><td>839.36</td><td>On the shelf</td></tr>")) << title.toStdString();
    EXPECT_TRUE(title.contains("<tr><td>A2</td><td>839.36</td><td>Due back 2026-12-04</td></tr>"));
    int status = 0;
    page("/title/6", &status);
    EXPECT_EQ(status, 404) << "a removed copy's page";
}

// Hostile searches get a normal page with the text shown as text, never an engine's words, and
// change nothing.
TEST_F(OpacServerTest, HostileSearchesAreShownAsTextAndChangeNothing)
{
    const QStringList before = libraryRows("select ItemID, AccessionID, Title from tblLibItems order by ItemID");
    for (const QString &hostile : {QString("<script>alert(1)</script>"), QString("' or 1=1 --"), QString("\"; drop table tblLibItems; --"),
                                   QString(10000, 'x'), QString("a") + QChar(0) + "b", QString::fromUtf8("\u202Etxet"), QString("%_*[")}) {
        int status = 0;
        const QString body = page(query(hostile), &status);
        // (an address longer than any search box sends is refused by the server, with a page of ours)
        EXPECT_EQ(status, hostile.size() > 1000 ? 414 : 200) << hostile.left(40).toStdString();
        EXPECT_TRUE(body.contains("<h1>Search the library</h1>")) << hostile.left(40).toStdString();
        EXPECT_FALSE(body.contains("<script>")) << "not escaped";
        for (const char *engine : {"SQL", "syntax", "sqlite", "ERROR", "Jet"})
            EXPECT_FALSE(body.contains(engine)) << engine << " for " << hostile.left(40).toStdString();
    }
    EXPECT_TRUE(page(query("<script>")).contains("&lt;script&gt;"));
    EXPECT_EQ(libraryRows("select ItemID, AccessionID, Title from tblLibItems order by ItemID"), before);
}

// A desk in the middle of writing neither holds the catalogue up nor shows it half a transaction.
TEST_F(OpacServerTest, ADeskWritingNeitherBlocksNorShowsHalfItsWork)
{
    const auto desk = EngineRegistry::installed().open(libraryPath_, false);
    desk->beginTransaction();
    Recordset none;
    desk->execute("Insert into tblLibItems (AccessionID, Title) values ('N1', 'Nuwe boek')", &none);
    QElapsedTimer clock;
    clock.start();
    EXPECT_TRUE(page(query("nuwe")).contains("Nothing in the library matches")) << "half a transaction was seen";
    EXPECT_LT(clock.elapsed(), 2000) << "the desk's open transaction held the catalogue up";
    desk->commitTransaction();
    EXPECT_TRUE(page(query("nuwe")).contains("Nuwe boek"));
}

// The titles are found in an index read again once it is older than its interval and the library
// has changed; a copy's availability and its removal show at once.
TEST_F(OpacServerTest, TheIndexIsReadAgainWhenDueAndAvailabilityIsAlwaysNow)
{
    Clock::setFixed(QDateTime(QDate(2026, 11, 25), QTime(10, 0)));
    OpacCatalogue catalogue(60);
    const auto found = [&catalogue](const char *typed) {
        QStringList shown;
        for (const OpacCatalogue::Title &t : catalogue.search(OpacCatalogue::Filter{typed}, 1).titles)
            shown << t.title + ": " + t.availability();
        return shown;
    };
    EXPECT_EQ(found("kennis"), QStringList({"Kennis is mag: Due back 2026-12-07", "Kennis van die aand: 2 of 3 on the shelf"}));
    library("Insert into tblLibItems (AccessionID, Title) values ('N1', 'Nuwe boek')");
    library("Insert into tblLibTransactions (AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate) values ('A1', 'L', 1, 1, #2026-11-25#, #2026-12-09#)");
    library("Update tblLibItems set PhasedOut = true where AccessionID = 'A3'");
    EXPECT_EQ(found("kennis"), QStringList({"Kennis is mag: Due back 2026-12-07", "Kennis van die aand: Due back 2026-12-04"}))
        << "availability and removal read from the index, not the library";
    EXPECT_TRUE(found("nuwe").isEmpty()) << "the index was read before its interval";
    Clock::setFixed(QDateTime(QDate(2026, 11, 25), QTime(10, 1, 1)));
    found("nuwe"); // starts the reading in the background
    catalogue.waitForRefresh();
    EXPECT_EQ(found("nuwe"), QStringList({"Nuwe boek: 1 of 1 on the shelf"})) << "the index was not read again";
    Clock::setFixed(QDateTime());
}

// "New in the library", "Most borrowed this term", the advanced form's lists and a title's other
// titles by its author.
TEST_F(OpacServerTest, NewPopularAdvancedAndOtherTitles)
{
    Clock::setFixed(QDateTime(QDate(2026, 11, 25), QTime(10, 0)));
    library("Insert into tblLibCategories (Category) values ('Fiction')");
    library("Insert into tblLibItemLanguages (ItemLanguage) values ('Afrikaans')");
    library("Update tblLibItems set DateAdded = #2026-01-10#");
    library("Insert into tblLibItems (AccessionID, Title, Author1, DateAdded, CategoryID, ItemLanguageID) values ('N1', 'Houd die blink kant bo', 1, "
            "#2026-11-20#, 1, 1)");
    const QString fresh = page("/new");
    EXPECT_TRUE(fresh.contains("1 titles; 1 to 1 shown.") && fresh.contains("Houd die blink kant bo")) << fresh.toStdString();

    // This term began on 1 October: the loans before it do not count.
    library("Insert into tblLibTransactions (AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate, Returned) values ('B1', 'L', 2, 5, "
            "#2026-10-02#, #2026-10-09#, true)");
    library("Insert into tblLibTransactions (AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate, Returned) values ('A1', 'L', 2, 1, "
            "#2026-09-02#, #2026-09-09#, true)");
    const QString popular = page("/popular");
    EXPECT_TRUE(popular.contains("Lent most since 2026-10-01.")) << popular.toStdString();
    EXPECT_LT(popular.indexOf("Kennis is mag</a> &middot;  &middot; 2 loans"), popular.indexOf("Kennis van die aand</a>")) << popular.toStdString();
    EXPECT_TRUE(popular.contains(QString::fromUtf8("Kennis van die aand</a> &middot; Brink, André &middot; 1 loans")));

    const QString advanced = page("/search?q=&cat=1&lang=1");
    EXPECT_TRUE(advanced.contains("1 titles;") && advanced.contains("Houd die blink kant bo")) << advanced.toStdString();
    EXPECT_TRUE(advanced.contains("<option value=\"1\" selected>Fiction</option>"));
    EXPECT_TRUE(page("/search?q=kennis&cat=abc").contains("2 titles;")) << "a list id that is no number is no choice";

    const QString title = page("/title/1");
    EXPECT_TRUE(title.contains(QString::fromUtf8("<h2>Other titles by Brink, André</h2>")) && title.contains("Houd die blink kant bo"))
        << title.toStdString();
    Clock::setFixed(QDateTime());
}


// A member signs in with the PIN set at the desk and sees their own loans (overdue marked, fine so
// far) and fines, nobody else's; a wrong PIN and an unknown number get one answer; a learner who
// has left cannot sign in; tries are limited; a form without its token is refused.
TEST_F(OpacServerTest, AMemberSignsInAndSeesTheirOwnLoansAndFines)
{
    Clock::setFixed(QDateTime(QDate(2026, 12, 10), QTime(10, 0)));
    members();
    library("Insert into tblLibTransactionFines (TransactionID, MemberID, MemberType, FineAmount, PaymentAmount, DateFined) values (2, 1, 'L', 4, 1, #2026-11-30#)");
    EXPECT_FALSE(libraryValue("select PinHash from tblLibMemberPins where MemberID = 1").contains("2468")) << "the PIN itself was kept";

    const auto wrong = signIn("L001", "9999");
    const auto nobody = signIn("L999", "2468");
    ASSERT_TRUE(wrong && nobody);
    EXPECT_EQ(wrong->status, 401);
    EXPECT_EQ(nobody->status, 401);
    EXPECT_NE(wrong->body.find("The number or the PIN is not right."), std::string::npos);
    EXPECT_NE(nobody->body.find("The number or the PIN is not right."), std::string::npos);
    EXPECT_EQ(signIn("L003", "1111")->status, 401) << "a learner who has left signed in";
    EXPECT_EQ(signIn("L001", "2468", false)->status, 400) << "a form without its token";

    const auto ok = signIn("L001", "2468");
    ASSERT_TRUE(ok);
    ASSERT_EQ(ok->status, 303);
    const std::string cookie = sessionCookie(ok);
    EXPECT_NE(cookie.find("HttpOnly"), std::string::npos);
    EXPECT_NE(cookie.find("SameSite=Strict"), std::string::npos);
    const auto account = client_->Get("/account", httplib::Headers{{"Cookie", cookie.substr(0, cookie.find(';'))}});
    ASSERT_TRUE(account);
    const QString mine = QString::fromStdString(account->body);
    EXPECT_TRUE(mine.contains("Signed in as Zola Dlamini.")) << mine.toStdString();
    EXPECT_TRUE(mine.contains("<td>Kennis van die aand</td><td>A2</td><td class=\"out\">2026-12-04 (overdue)</td><td>9.00</td>")) << mine.toStdString();
    EXPECT_TRUE(mine.contains("<td>Kennis is mag</td><td>2026-11-30</td><td>3.00</td>")) << mine.toStdString();

    EXPECT_EQ(client_->Get("/account")->status, 303) << "no personal data without signing in";
    for (int n = 0; n < 5; ++n)
        signIn("L002", "0000");
    const auto limited = signIn("L002", "1357");
    EXPECT_EQ(limited->status, 429) << "the sixth try in a minute";
    Clock::setFixed(QDateTime(QDate(2026, 12, 10), QTime(10, 2)));
    const auto later = signIn("L002", "1357");
    ASSERT_EQ(later->status, 303);
    const std::string other = sessionCookie(later);
    const QString theirs = QString::fromStdString(client_->Get("/account", httplib::Headers{{"Cookie", other.substr(0, other.find(';'))}})->body);
    EXPECT_TRUE(theirs.contains("Signed in as Kavi Naidoo.") && theirs.contains("You have nothing out.") && theirs.contains("You owe nothing."))
        << theirs.toStdString();
    Clock::setFixed(QDateTime());
}

// A title whose copies are all out is reserved from its page through the desk's rule, shows under
// "My reservations" and at the desk's table, and is cancelled there; a title on the shelf has no
// Reserve, and a form without the session's token changes nothing.
TEST_F(OpacServerTest, AMemberReservesATitleThatIsOutAndCancelsIt)
{
    members();
    const std::string session = sessionCookie(signIn("L002", "1357"));
    ASSERT_FALSE(session.empty());
    const httplib::Headers me{{"Cookie", session.substr(0, session.find(';'))}};
    const QString shelf = QString::fromStdString(client_->Get("/title/1", me)->body);
    EXPECT_FALSE(shelf.contains("action=\"/reserve\"")) << "a title on the shelf offered Reserve";
    const QString out = QString::fromStdString(client_->Get("/title/5", me)->body);
    ASSERT_TRUE(out.contains("action=\"/reserve\"")) << out.toStdString();
    const std::string token = out.mid(out.indexOf("name=\"token\" value=\"") + 20, 64).toStdString();

    EXPECT_EQ(client_->Post("/reserve", me, httplib::Params{{"item", "5"}})->status, 303);
    EXPECT_EQ(libraryValue("select count(*) from tblLibReserves"), "0") << "a form without its token reserved";
    EXPECT_EQ(client_->Post("/reserve", me, httplib::Params{{"item", "1"}, {"token", token}})->status, 409);
    EXPECT_EQ(client_->Post("/reserve", me, httplib::Params{{"item", "5"}, {"token", token}})->status, 303);
    EXPECT_EQ(libraryRows("select MemberType, MemberID, ItemID, Canceled from tblLibReserves"), QStringList{"L|2|5|False"});
    const auto again = client_->Post("/reserve", me, httplib::Params{{"item", "5"}, {"token", token}});
    EXPECT_EQ(again->status, 409);
    EXPECT_NE(again->body.find("Members can not reserve the same item more than once."), std::string::npos) << "the desk's own rule";

    const QString account = QString::fromStdString(client_->Get("/account", me)->body);
    EXPECT_TRUE(account.contains("<td>Kennis is mag</td>")) << account.toStdString();
    const QString reserveID = libraryValue("select ReserveID from tblLibReserves");
    // Another member cannot cancel it.
    const std::string other = sessionCookie(signIn("L001", "2468"));
    const httplib::Headers them{{"Cookie", other.substr(0, other.find(';'))}};
    const QString theirs = QString::fromStdString(client_->Get("/account", them)->body);
    const std::string theirToken = theirs.mid(theirs.indexOf("name=\"token\" value=\"") + 20, 64).toStdString();
    client_->Post("/cancel", them, httplib::Params{{"reservation", reserveID.toStdString()}, {"token", theirToken}});
    EXPECT_EQ(libraryValue("select Canceled from tblLibReserves"), "False");
    client_->Post("/cancel", me, httplib::Params{{"reservation", reserveID.toStdString()}, {"token", token}});
    EXPECT_EQ(libraryValue("select Canceled from tblLibReserves"), "True");
    EXPECT_TRUE(QString::fromStdString(client_->Get("/account", me)->body).contains("You have reserved nothing."));
}
