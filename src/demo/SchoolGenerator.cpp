#include "SchoolGenerator.h"

#include "Clock.h"
#include "ConnectionPool.h"
#include "DatabaseFile.h"
#include "Engine.h"
#include "DatabaseSchema.h"
#include "DbConnection.h"
#include "SqlText.h"

#include <QColor>
#include <QDir>
#include <QFont>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <random>
#include <vector>

namespace {

const char *const Surnames[] = {
    "Botha", "Naidoo", "Mokoena", "Dlamini", "van der Merwe", "Nkosi", "Pillay", "Smith", "Jacobs", "Khumalo", "Pretorius",
    "Ndlovu", "Mahlangu", "Venter", "Govender", "Sithole", "Coetzee", "Zulu", "Fourie", "Mthembu", "du Plessis", "Baloyi",
    "Adams", "Williams", "Meyer", "Ngcobo", "Petersen", "Steyn", "Hendricks", "Radebe", "Kruger", "Nel", "O'Connor", "Moodley",
    "Maseko", "Swart", "Molefe", "Erasmus", "Chetty", "Tshabalala"};
const char *const FirstNames[] = {
    "Anna", "Thabo", "Lerato", "Pieter", "Ayesha", "Sipho", "Johan", "Zanele", "Michael", "Naledi", "Ruan", "Precious", "Kagiso",
    "Lindiwe", "Ethan", "Amahle", "Liam", "Nomvula", "Reza", "Chloe", "Tshepo", "Elna", "Mpho", "Danie", "Karabo", "Megan",
    "Sibusiso", "Lize", "Yusuf", "Palesa", "Jaco", "Nandi", "Riaan", "Zinhle", "Aiden", "Refilwe", "Marli", "Bongani"};
const char *const Adjectives[] = {"Silent", "Golden", "Hidden", "Last", "Broken", "Secret", "Wild", "Forgotten", "Burning", "Distant",
                                  "Little", "Crimson", "Winter", "Lost", "Brave", "Endless", "Quiet", "Shining"};
const char *const Nouns[] = {"River", "Mountain", "Garden", "Kingdom", "Voyage", "Promise", "Island", "Storm", "Journey", "Harvest",
                             "Lantern", "Desert", "Ocean", "Forest", "Bridge", "Letter", "Shadow", "Festival"};
const char *const AfrAdjectives[] = {"Stil", "Goue", "Verlore", "Wilde", "Laaste", "Geheime", "Ou", "Klein"};
const char *const AfrNouns[] = {"Rivier", "Berg", "Tuin", "Reis", "Storm", "Eiland", "Woud", "Brief"};
struct Subject { const char *description; const char *classification; const char *keywordEng; const char *keywordAfr; };
const Subject Subjects[] = {
    {"General knowledge", "030", "facts", "feite"},          {"Philosophy", "100", "thinking", "denke"},
    {"Religion", "200", "faith", "geloof"},                 {"Social sciences", "300", "society", "samelewing"},
    {"Economics", "330", "money", "geld"},                  {"Law", "340", "law", "reg"},
    {"Education", "370", "school", "skool"},                {"Languages", "400", "words", "woorde"},
    {"English language", "420", "grammar", "grammatika"},   {"Natural sciences", "500", "nature", "natuur"},
    {"Mathematics", "510", "numbers", "getalle"},           {"Astronomy", "520", "stars", "sterre"},
    {"Physics", "530", "energy", "energie"},                {"Chemistry", "540", "elements", "elemente"},
    {"Earth sciences", "550", "rocks", "rotse"},            {"Life sciences", "570", "cells", "selle"},
    {"Plants", "580", "plants", "plante"},                  {"Animals", "590", "animals", "diere"},
    {"Technology", "600", "machines", "masjiene"},          {"Health", "613", "health", "gesondheid"},
    {"Agriculture", "630", "farming", "boerdery"},          {"Cooking", "641.5", "food", "kos"},
    {"Computers", "004", "computers", "rekenaars"},         {"Arts", "700", "art", "kuns"},
    {"Music", "780", "music", "musiek"},                    {"Sport", "796", "sport", "sport"},
    {"Literature", "800", "stories", "stories"},            {"Afrikaans literature", "839.36", "poetry", "poësie"},
    {"History", "900", "history", "geskiedenis"},           {"Geography", "910", "maps", "kaarte"},
    {"History of South Africa", "968", "heritage", "erfenis"}, {"Biography", "920", "lives", "lewens"}};
const char *const ExtraKeywords[][2] = {
    {"dog", "hond"}, {"cat", "kat"}, {"horse", "perd"}, {"ocean", "see"}, {"friendship", "vriendskap"}, {"family", "familie"},
    {"adventure", "avontuur"}, {"mystery", "raaisel"}, {"war", "oorlog"}, {"love", "liefde"}, {"space", "ruimte"},
    {"water", "water"}, {"weather", "weer"}, {"city", "stad"}, {"farm", "plaas"}, {"ghost", "spook"}, {"dragon", "draak"},
    {"magic", "towery"}, {"island", "eiland"}, {"journey", "reis"}, {"", "volksverhaal"}, {"fairy tale", ""}};
const char *const Publishers[] = {"Maskew Miller Longman", "Tafelberg", "Penguin Random House SA", "Oxford University Press SA",
                                  "Human & Rousseau", "Jacana Media", "LAPA Uitgewers", "Macmillan South Africa", "NB Publishers",
                                  "Struik Nature", "Pan Macmillan", "Cambridge University Press", "Via Afrika", "Kwela Boeke"};
const char *const Series[] = {"Young Explorers", "Jong Lesers", "Science Today", "African Writers", "Classics Library",
                              "Wonderwereld", "Sports Heroes", "Nature Guides", "History Makers", "Teen Reads"};
const char *const Languages[] = {"English", "Afrikaans", "isiZulu", "Sesotho"};

QString q(const QString &text) { return QLatin1Char('\'') + Safesql(text) + QLatin1Char('\''); }
QString money(double v) { return QString::number(v, 'f', 2); }

// Runs many statements in transactions of bounded size, so a large school is written quickly.
// It writes through the engine itself: the demo stands in for the school's own administration
// program, which fills the school database that Shelvora never writes.
class Writer {
public:
    explicit Writer(const QString &path) : connection_(EngineRegistry::installed().forLocation(path).open(path, false))
    {
        connection_->beginTransaction();
    }
    void operator()(const QString &sql)
    {
        connection_->execute(sql, nullptr);
        if (++pending_ == 20000) {
            connection_->commitTransaction();
            connection_->beginTransaction();
            pending_ = 0;
        }
    }
    void finish()
    {
        connection_->commitTransaction();
        connection_.reset();
    }

private:
    std::unique_ptr<PhysicalConnection> connection_;
    int pending_ = 0;
};

struct Member { QString type; int id; };

} // namespace

SchoolGenerator::SchoolGenerator(SchoolSize size, unsigned seed) : size_(size), seed_(seed) {}

void SchoolGenerator::write(const QString &libraryPath, const QString &centralPath, const QString &photoFolder)
{
    writeCentral(centralPath, size_.photos ? photoFolder : QString());
    writeLibrary(libraryPath);
    ConnectionPool::shared().closeIdle(libraryPath);
    DatabaseFile::useRollbackJournal(centralPath);
}

void SchoolGenerator::writeCentral(const QString &path, const QString &photoFolder)
{
    DatabaseSchema::createCentralDatabase(path);
    std::mt19937 rng(seed_);
    auto pick = [&](int n) { return int(rng() % unsigned(n)); };
    const QDate today = Clock::today();
    Writer run(path);
    run(QStringLiteral("Insert into general_info(schoolname) values (%1)").arg(q(schoolName())));

    // Grades 1 to 12 hold learners; the others exist in the administration program but never in library lists.
    for (int g = 1; g <= 12; ++g)
        run(QStringLiteral("Insert into SchoolGrades(ID, Name, schoolgrade) values (%1, 'Grade %1', 'Yes')").arg(g));
    run(QStringLiteral("Insert into SchoolGrades(ID, Name, schoolgrade) values (0, 'Grade R', 'No')"));
    run(QStringLiteral("Insert into SchoolGrades(ID, Name, schoolgrade) values (13, 'Bridging Year', 'No')"));
    run(QStringLiteral("Insert into SchoolGrades(ID, Name, schoolgrade) values (14, 'Adult Education', 'Yes')"));
    run(QStringLiteral("Insert into SchoolGrades(ID, Name, schoolgrade) values (15, 'Alumni', 'No')"));
    const int classesPerGrade = std::max(2, size_.learners / 12 / 35 + 1);
    for (int g = 1; g <= 12; ++g)
        for (int c = 0; c < classesPerGrade; ++c)
            run(QStringLiteral("Insert into Classes(ClassName, Grade) values ('%1%2', %1)").arg(g).arg(QChar('A' + c)));
    run(QStringLiteral("Insert into ReasonCodes(ReasonCode, ReasonDescription) values (1, 'Transferred to another school')"));
    run(QStringLiteral("Insert into ReasonCodes(ReasonCode, ReasonDescription) values (2, 'Left school')"));
    run(QStringLiteral("Insert into ReasonCodes(ReasonCode, ReasonDescription) values (3, 'Completed matric')"));

    if (!photoFolder.isEmpty())
        QDir().mkpath(photoFolder);
    const int archived = std::max(3, size_.learners / 20);
    const int flagged = std::max(2, size_.learners / 60);
    learnerCount_ = size_.learners + archived;
    for (int i = 1; i <= learnerCount_; ++i) {
        const QString surname = QString::fromUtf8(Surnames[pick(std::size(Surnames))]);
        const QString first = QString::fromUtf8(FirstNames[pick(std::size(FirstNames))]);
        const int grade = 1 + (i - 1) % 12;
        const int classID = (grade - 1) * classesPerGrade + 1 + pick(classesPerGrade);
        const bool isArchived = i > size_.learners;
        const bool isFlagged = !isArchived && i % (size_.learners / flagged) == 0;
        const QDate admitted = today.addDays(-365 * (grade - 1) - pick(200) - 30);
        const QString admission = QStringLiteral("%1%2").arg(admitted.year()).arg(i, 5, 10, QLatin1Char('0'));
        const QDate born = admitted.addYears(-6).addDays(-pick(365));
        const QString idNo = born.toString(QStringLiteral("yyMMdd")) + QStringLiteral("%1").arg(5000 + pick(5000)) + QStringLiteral("08") + QString::number(pick(10));
        const bool hasPhoto = !photoFolder.isEmpty() && i % 10 != 0;
        const QString photo = hasPhoto ? admission + QStringLiteral(".png") : QString();
        run(QStringLiteral("Insert into Learner_Info(AccessionNo, SName, FName, NickName, Grade, Class, Gender, IDNo, Photoname, Status, "
                           "TSStatusFlag, TSReasonCode, LuritsIndicator, LuritsFlag, LuritsNumber, thedate) values "
                           "(%1, %2, %3, %4, %5, %6, %7, %8, %9, %10, %11, %12, 'Y', 1, %13, %14)")
                .arg(q(admission), q(surname), q(first), q(first.left(4)))
                .arg(grade).arg(classID)
                .arg(q(i % 2 ? QStringLiteral("F") : QStringLiteral("M")), q(idNo), hasPhoto ? q(photo) : QStringLiteral("Null"),
                     q(isArchived ? QStringLiteral("A") : QStringLiteral("C")))
                .arg(isFlagged ? 0 : 1)
                .arg(isArchived ? QString::number(1 + pick(3)) : QStringLiteral("Null"))
                .arg(q(QStringLiteral("%1").arg(100000000 + i)), JetDate(admitted)));
        if (hasPhoto) {
            QImage image(96, 120, QImage::Format_RGB32);
            image.fill(QColor::fromHsv(int((i * 47) % 360), 90, 200));
            QPainter p(&image);
            p.setPen(Qt::white);
            QFont font = p.font();
            font.setPixelSize(36);
            font.setBold(true);
            p.setFont(font);
            p.drawText(image.rect(), Qt::AlignCenter, first.left(1) + surname.left(1).toUpper());
            p.end();
            image.save(QDir(photoFolder).filePath(photo));
        }
    }
    for (int e = 1; e <= size_.educators; ++e) {
        const QString status = e % 13 == 0 ? QStringLiteral("A") : QStringLiteral("C");
        run(QStringLiteral("Insert into Educators(SName, FName, IDNumber, [Key], Status) values (%1, %2, %3, %4, %5)")
                .arg(q(QString::fromUtf8(Surnames[pick(std::size(Surnames))])), q(QString::fromUtf8(FirstNames[pick(std::size(FirstNames))])),
                     q(QStringLiteral("7%1").arg(100000000000LL + e * 7919LL)), q(QStringLiteral("ED%1").arg(e, 3, 10, QLatin1Char('0'))), q(status)));
    }
    for (int s = 1; s <= size_.staff; ++s) {
        run(QStringLiteral("Insert into StaffMembers(SName, FName, IDNumber, Status) values (%1, %2, %3, %4)")
                .arg(q(QString::fromUtf8(Surnames[pick(std::size(Surnames))])), q(QString::fromUtf8(FirstNames[pick(std::size(FirstNames))])),
                     q(QStringLiteral("8%1").arg(100000000000LL + s * 104729LL)), q(s % 11 == 0 ? QStringLiteral("A") : QStringLiteral("C"))));
    }
    for (int p = 1; p <= 20; ++p)
        run(QStringLiteral("Insert into Parent_Info(SName, FName, IDNumber) values (%1, %2, %3)")
                .arg(q(QString::fromUtf8(Surnames[pick(std::size(Surnames))])), q(QString::fromUtf8(FirstNames[pick(std::size(FirstNames))])),
                     q(QStringLiteral("6%1").arg(100000000000LL + p * 31337LL))));
    run.finish();
}

void SchoolGenerator::writeLibrary(const QString &path)
{
    DatabaseSchema::createLibraryDatabase(path);
    std::mt19937 rng(seed_ + 1);
    auto pick = [&](int n) { return int(rng() % unsigned(n)); };
    const QDate today = Clock::today();
    Writer run(path);

    // Categories and sub-categories (Fiction among them; one category withdrawn).
    const QStringList categories = {QStringLiteral("Fiction"), QStringLiteral("Non-Fiction"), QStringLiteral("Reference"),
                                    QStringLiteral("Periodicals"), QStringLiteral("Audio-Visual"), QStringLiteral("Slides")};
    for (const QString &c : categories)
        run(QStringLiteral("Insert into tblLibCategories(Category) values (%1)").arg(q(c)));
    run(QStringLiteral("Update tblLibCategories set PhasedOut = true, PhasedOutDate = %1 where Category = 'Slides'").arg(JetDate(today.addYears(-3))));
    const std::vector<std::pair<int, QString>> subCategories = {
        {1, QStringLiteral("Fiction")},          {1, QStringLiteral("Teen Fiction")},  {1, QStringLiteral("Afrikaanse Fiksie")},
        {1, QStringLiteral("Picture Books")},    {2, QStringLiteral("Science")},       {2, QStringLiteral("History")},
        {2, QStringLiteral("Geography")},        {2, QStringLiteral("Arts & Crafts")}, {2, QStringLiteral("Life Skills")},
        {3, QStringLiteral("Encyclopaedias")},   {3, QStringLiteral("Dictionaries")},  {4, QStringLiteral("Magazines")},
        {5, QStringLiteral("DVDs")},             {5, QStringLiteral("Audio Books")},   {6, QStringLiteral("Film Slides")}};
    for (const auto &[category, name] : subCategories)
        run(QStringLiteral("Insert into tblLibSubCategories(CategoryID, SubCategory) values (%1, %2)").arg(category).arg(q(name)));
    run(QStringLiteral("Update tblLibSubCategories set PhasedOut = true, PhasedOutDate = %1 where CategoryID = 6").arg(JetDate(today.addYears(-3))));

    for (const Subject &s : Subjects)
        run(QStringLiteral("Insert into tblLibSubjectCodes(SubjectDescription, ClassificationNo, strSubject) values (%1, %2, %1)")
                .arg(q(QString::fromUtf8(s.description)), q(QString::fromUtf8(s.classification))));
    int keywordCount = 0;
    for (const Subject &s : Subjects) {
        run(QStringLiteral("Insert into tblLibKeywords(KeywordEng, KeywordAfr) values (%1, %2)")
                .arg(q(QString::fromUtf8(s.keywordEng)), q(QString::fromUtf8(s.keywordAfr))));
        ++keywordCount;
    }
    for (const auto &k : ExtraKeywords) {
        run(QStringLiteral("Insert into tblLibKeywords(KeywordEng, KeywordAfr) values (%1, %2)")
                .arg(*k[0] ? q(QString::fromUtf8(k[0])) : QStringLiteral("Null"), *k[1] ? q(QString::fromUtf8(k[1])) : QStringLiteral("''")));
        ++keywordCount;
    }
    const int authorCount = std::max(150, size_.copies / 100);
    for (int a = 1; a <= authorCount; ++a) {
        const QString surname = QString::fromUtf8(Surnames[pick(std::size(Surnames))]);
        const QString first = QString::fromUtf8(FirstNames[pick(std::size(FirstNames))]);
        run(QStringLiteral("Insert into tblLibAuthors(AuthorSurname, AuthorFirstName, AuthorCode, PhasedOut) values (%1, %2, %3, %4)")
                .arg(q(surname), q(first), q(surname.left(3).toUpper() + QString::number(a)), a % 97 == 0 ? QStringLiteral("true") : QStringLiteral("false")));
    }
    for (const char *p : Publishers)
        run(QStringLiteral("Insert into tblLibPublishers(Publisher) values (%1)").arg(q(QString::fromUtf8(p))));
    for (const char *s : Series)
        run(QStringLiteral("Insert into tblLibSeries(Series) values (%1)").arg(q(QString::fromUtf8(s))));
    for (const char *l : Languages)
        run(QStringLiteral("Insert into tblLibItemLanguages(ItemLanguage) values (%1)").arg(q(QString::fromUtf8(l))));
    run(QStringLiteral("Insert into tblLibItemLanguages(ItemLanguage, PhasedOut) values ('Latin', true)"));

    // The catalogue: titles with one to four copies each, one row per copy.
    struct Copy { int itemID; QString accession; QString loanType; bool lendable; };
    std::vector<Copy> copies;
    copies.reserve(size_t(size_.copies));
    int itemID = 0;
    int title = 0;
    while (itemID < size_.copies) {
        ++title;
        const int category = 1 + (title % 10 < 5 ? 0 : title % 10 < 8 ? 1 : title % 10 == 8 ? 2 : 3 + pick(2));
        int subCategory;
        switch (category) {
        case 1: subCategory = title % 7 == 0 ? 3 : title % 5 == 0 ? 2 : title % 11 == 0 ? 4 : 1; break;
        case 2: subCategory = 5 + pick(5); break;
        case 3: subCategory = 10 + pick(2); break;
        case 4: subCategory = 12; break;
        default: subCategory = 13 + pick(2); break;
        }
        const bool afrikaans = subCategory == 3 || title % 9 == 0;
        const Subject &subject = Subjects[category == 1 ? (afrikaans ? 27 : 26) : pick(26)];
        const QString titleText = afrikaans
            ? QStringLiteral("Die %1 %2").arg(QString::fromUtf8(AfrAdjectives[pick(std::size(AfrAdjectives))]),
                                              QString::fromUtf8(AfrNouns[pick(std::size(AfrNouns))]))
            : QStringLiteral("The %1 %2").arg(QString::fromUtf8(Adjectives[pick(std::size(Adjectives))]),
                                              QString::fromUtf8(Nouns[pick(std::size(Nouns))]))
                  + (title % 4 == 0 ? QStringLiteral(" %1").arg(title) : QString());
        const int author1 = 1 + pick(authorCount);
        const int author2 = title % 6 == 0 ? 1 + pick(authorCount) : 0;
        const int author3 = title % 25 == 0 ? 1 + pick(authorCount) : 0;
        const int language = afrikaans ? 2 : title % 31 == 0 ? 3 + pick(2) : 1;
        const int series = title % 8 == 0 ? 1 + pick(int(std::size(Series))) : 0;
        const QString isbn = QStringLiteral("978%1").arg(1000000000LL + title * 7907LL % 8999999999LL);
        const QDate purchased = today.addDays(-pick(3650) - 1);
        const QString loanType = category == 3 ? QStringLiteral("S") : title % 17 == 0 ? QStringLiteral("L") : QStringLiteral("N");
        const bool reference = category == 3;
        const int copiesOfTitle = 1 + pick(4);
        for (int c = 0; c < copiesOfTitle && itemID < size_.copies; ++c) {
            ++itemID;
            const QString prefix = QStringLiteral("FNRPA").mid(category - 1, 1);
            const QString accession = prefix + QStringLiteral("%1").arg(itemID, 6, 10, QLatin1Char('0'));
            const bool phasedOut = itemID % 211 == 0;
            const bool restricted = itemID % 157 == 0;
            run(QStringLiteral("Insert into tblLibItems(AccessionID, CategoryID, SubCategoryID, ClassificationNo, MainSubject, Title, ByLine, "
                               "Author1, Author2, Author3, Publisher, YearPublished, ItemLanguageID, ISBN, Barcode, SeriesID, Cost, ReferenceItem, "
                               "DatePurchased, DateAdded, Restricted, LoanType, ShelfNumber, Edition, PhasedOut, PhasedOutDate, PhasedOutReason) "
                               "values (%1, %2, %3, %4, %5, %6, %7, %8, %9, %10, %11, %12, %13, %14, %15, %16, %17, %18, %19, %20, %21, %22, %23, %24, %25, %26, %27)")
                    .arg(q(accession)).arg(category).arg(subCategory)
                    .arg(q(QString::fromUtf8(subject.classification)), q(QString::fromUtf8(subject.description)), q(titleText),
                         title % 3 == 0 ? q(QStringLiteral("A story of %1").arg(QString::fromUtf8(Nouns[pick(std::size(Nouns))]).toLower())) : QStringLiteral("Null"))
                    .arg(author1).arg(author2).arg(author3).arg(1 + pick(int(std::size(Publishers))))
                    .arg(purchased.year() - pick(5)).arg(language)
                    .arg(q(isbn), q(accession))
                    .arg(series)
                    .arg(money(60 + pick(400) + pick(100) / 100.0))
                    .arg(reference ? QStringLiteral("true") : QStringLiteral("false"), JetDate(purchased), JetDate(purchased.addDays(pick(20))),
                         restricted ? QStringLiteral("true") : QStringLiteral("false"), q(loanType),
                         q(QStringLiteral("%1 %2").arg(QString::fromUtf8(subject.classification), titleText.mid(4, 3).toUpper())))
                    .arg(1 + (title % 13 == 0 ? 1 : 0))
                    .arg(phasedOut ? QStringLiteral("true") : QStringLiteral("false"),
                         phasedOut ? JetDate(today.addDays(-pick(700))) : QStringLiteral("Null"),
                         phasedOut ? q(QStringList{QStringLiteral("Lost"), QStringLiteral("Damaged"), QStringLiteral("Weed")}[pick(3)]) : QStringLiteral("Null")));
            run(QStringLiteral("Insert into tblLibItemSubjects(subjectid, itemid) values (%1, %2)").arg(int(&subject - Subjects) + 1).arg(itemID));
            if (itemID % 3 != 0) {
                std::vector<int> keys{int(&subject - Subjects) + 1};
                for (int k = pick(4); k > 0; --k)
                    keys.push_back(1 + pick(keywordCount));
                std::sort(keys.begin(), keys.end());
                keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
                for (int key : keys)
                    run(QStringLiteral("Insert into tblLibItemKeywords(KeyID, ItemID) values (%1, %2)").arg(key).arg(itemID));
            }
            copies.push_back(Copy{itemID, accession, loanType, !phasedOut && !reference && !restricted});
        }
    }

    // Loan and fine settings for every loan type and member category, written as the settings
    // screen saves them (learners, then staff and educators with the same rules), so the screen
    // shows what the desk applies.
    struct Setting { const char *loanType; const char *category; int period; double fine; int interval; int maxItems; int maxExt; };
    const Setting settings[] = {
        {"S", "L", 3, 1.00, 1, 1, 0},  {"S", "S", 7, 1.00, 1, 3, 1},  {"S", "E", 7, 1.00, 1, 3, 1},
        {"N", "L", 14, 0.50, 7, 2, 2}, {"N", "S", 28, 0.50, 7, 5, 0}, {"N", "E", 28, 0.50, 7, 5, 0},
        {"L", "L", 42, 0.50, 7, 3, 1}, {"L", "S", 56, 0.50, 7, 8, 0}, {"L", "E", 56, 0.50, 7, 8, 0}};
    for (const Setting &s : settings)
        run(QStringLiteral("Insert into tblLibsettings(Loantype,UserCat,Loanperiod,FineAmount,FineInterval,Maxitems,ExtDays,MaxExt,MaxRes,MaxUserRes)"
                           "VALUES('%1','%2',%3,%4,%5,%6,7,%7,3,2)")
                .arg(QString::fromLatin1(s.loanType), QString::fromLatin1(s.category)).arg(s.period).arg(money(s.fine)).arg(s.interval)
                .arg(s.maxItems).arg(s.maxExt));

    std::vector<const Copy *> lendable;
    for (const Copy &c : copies)
        if (c.lendable)
            lendable.push_back(&c);
    auto member = [&]() {
        const int r = pick(100);
        if (r < 85)
            return Member{QStringLiteral("L"), 1 + pick(size_.learners)};
        if (r < 95)
            return Member{QStringLiteral("E"), 1 + pick(size_.educators)};
        return Member{QStringLiteral("S"), 1 + pick(size_.staff)};
    };
    int transaction = 0;
    // Returned loans over the last three years; late ones carry a fine, paid, cancelled or still owed.
    for (int i = 0; i < size_.historicLoans; ++i) {
        const Copy &c = *lendable[size_t(pick(int(lendable.size())))];
        const Member m = member();
        const QDate issued = today.addDays(-45 - pick(3 * 365)); // returned (at most 44 days on) before today
        const QDate due = issued.addDays(14);
        const int lateness = pick(10) < 8 ? -pick(10) : 1 + pick(30);
        const QDate returned = due.addDays(lateness);
        const int extensions = pick(10) == 0 ? 1 : 0;
        run(QStringLiteral("Insert into tblLibTransactions(AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate, ReturnDate, Returned, Extensions) "
                           "values (%1, %2, %3, %4, %5, %6, %7, true, %8)")
                .arg(q(c.accession), q(m.type)).arg(m.id).arg(c.itemID).arg(JetDate(issued), JetDate(due), JetDate(returned)).arg(extensions));
        ++transaction;
        if (lateness > 0) {
            const double fine = 0.50 * ((lateness + 6) / 7);
            const int state = pick(10);
            const QString payment = state < 6 ? QStringLiteral("%1, %2, false").arg(money(fine), JetDate(std::min(today, returned.addDays(pick(30)))))
                                    : state < 7 ? QStringLiteral("0, Null, true")
                                                : QStringLiteral("0, Null, false");
            run(QStringLiteral("Insert into tblLibTransactionFines(TransactionID, MemberID, MemberType, FineAmount, DateFined, PaymentAmount, PaymentDate, FineCancelled) "
                               "values (%1, %2, %3, %4, %5, %6)")
                    .arg(transaction).arg(m.id).arg(q(m.type)).arg(money(fine), JetDate(returned), payment));
        }
    }
    // Open loans on distinct copies, a quarter of them overdue; some reserved by someone else.
    std::shuffle(lendable.begin(), lendable.end(), rng);
    const int openLoans = std::min<int>(size_.openLoans, int(lendable.size()) / 2);
    std::vector<const Copy *> onLoan;
    for (int i = 0; i < openLoans; ++i) {
        const Copy &c = *lendable[size_t(i)];
        const Member m = member();
        const bool overdue = i % 4 == 0;
        const QDate issued = today.addDays(overdue ? -20 - pick(40) : -pick(12));
        run(QStringLiteral("Insert into tblLibTransactions(AccessionID, MemberType, MemberID, ItemID, IssueDate, DueDate, Returned, Extensions) "
                           "values (%1, %2, %3, %4, %5, %6, false, %7)")
                .arg(q(c.accession), q(m.type)).arg(m.id).arg(c.itemID).arg(JetDate(issued), JetDate(issued.addDays(14))).arg(pick(6) == 0 ? 1 : 0));
        onLoan.push_back(&c);
    }
    for (int r = 0; r < size_.reservations && !onLoan.empty(); ++r) {
        const Copy &c = *onLoan[size_t(pick(int(onLoan.size())))];
        const Member m = member();
        run(QStringLiteral("Insert into tblLibReserves(MemberType, MemberID, ItemID, ReserveDate, Canceled) values (%1, %2, %3, %4, %5)")
                .arg(q(m.type)).arg(m.id).arg(c.itemID).arg(JetDate(today.addDays(-pick(20))), r % 5 == 0 ? QStringLiteral("true") : QStringLiteral("false")));
    }
    run.finish();
}
