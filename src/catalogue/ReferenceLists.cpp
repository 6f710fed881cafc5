// The definitions of the six reference lists: statements, messages and names as each screen has them.
#include "frmReferenceList.h"

#include "clsTSQL.h"

namespace {

using Check = frmReferenceList::Check;
using Values = frmReferenceList::Values;

QString q(const QString &text) { return QLatin1Char('\'') + text + QLatin1Char('\''); }
QString n(int id) { return QString::number(id); }

// Series, publishers and languages: one name each.
frmReferenceList::Definition singleName(const char *field, const char *label, const char *column, const char *table, const char *saved)
{
    frmReferenceList::Definition d;
    d.fields = {{field, label}};
    d.table = table;
    d.fieldColumns = {saved};
    d.columns = {{column, 50}};
    return d;
}

frmReferenceList::Definition series()
{
    auto d = singleName("txtSeries", "Series:", "Series", "tblLibSeries", "Series");
    d.objectName = QStringLiteral("frmSeries");
    d.caption = QStringLiteral("Maintain Series");
    d.searchBox = "txtSeriesSearch";
    d.allCaption = QStringLiteral("&All Series");
    d.printHeading = QStringLiteral("Series");
    d.addLocation = QStringLiteral("frmSeriesList");
    d.printLocation = QStringLiteral("frmSeries");
    d.listAll = QStringLiteral("select SeriesID, Series from tblLibSeries where PhasedOut = false order by Series");
    d.search = [](const QString &t) { return QStringLiteral("select SeriesID, Series from tblLibSeries where (phasedout = false and Series like '%") + t + QStringLiteral("%') order by Series"); };
    d.missing = [](const Values &v) { return v[0].isEmpty() ? QStringLiteral("No Blanks are allowed.") : QString(); };
    d.duplicates = [](const Values &v) {
        return std::vector<Check>{{QStringLiteral("Select * from tblLibSeries where(PhasedOut = False and series = ") + q(v[0]) + QStringLiteral(")"),
                                   QStringLiteral("This series already exists")}};
    };
    d.insert = [](const Values &v) { return QStringLiteral("insert into tblLibSeries(Series) values(") + q(v[0]) + QStringLiteral(")"); };
    d.added = QStringLiteral("Saved Successfully.");
    d.update = [](int id, const Values &v) { return QStringLiteral(" update tblLibSeries") + QStringLiteral(" set Series = ") + q(v[0]) + QStringLiteral(" where SeriesID = ") + n(id); };
    d.updated = QStringLiteral("Saved Successfully");
    d.noneToEdit = QStringLiteral("Please select a series to edit");
    d.confirmDelete = QStringLiteral("Do you want to delete the selected item?");
    d.phaseOut = [](int id) { return QStringLiteral("update tblLibSeries set PhasedOut = true where seriesid = ") + n(id); };
    d.deleted = QStringLiteral("Item Phased Out");
    d.noneToDelete = QStringLiteral("Please select a series to delete");
    return d;
}

frmReferenceList::Definition publishers()
{
    auto d = singleName("txtPublisher", "Publisher:", "Publisher", "tblLibPublishers", "Publisher");
    d.objectName = QStringLiteral("frmPublisher");
    d.caption = QStringLiteral("Maintain Publishers");
    d.searchBox = "txtSearch";
    d.allCaption = QStringLiteral("&All Publishers");
    d.printHeading = QStringLiteral("Publishers");
    d.addLocation = QStringLiteral("frmPublisherList");
    d.printLocation = QStringLiteral("frmReserves"); // the publisher screen has always reported its print errors under this name
    d.listAll = QStringLiteral("select PublisherID, Publisher from tblLibPublishers where PhasedOut = false order by Publisher");
    d.search = [](const QString &t) { return QStringLiteral("select PublisherID, Publisher from tblLibPublishers where (phasedout = false and Publisher like '%") + t + QStringLiteral("%') order by Publisher"); };
    d.missing = [](const Values &v) { return v[0].isEmpty() ? QStringLiteral("No Blanks are allowed.") : QString(); };
    d.duplicates = [](const Values &v) {
        return std::vector<Check>{{QStringLiteral("Select * from tblLibPublishers where(PhasedOut = False and Publisher = ") + q(v[0]) + QStringLiteral(")"),
                                   QStringLiteral("Publisher exist")}};
    };
    d.insert = [](const Values &v) { return QStringLiteral("insert into tblLibPublishers(Publisher) values(") + q(v[0]) + QStringLiteral(")"); };
    d.added = QStringLiteral("Publisher is added successfully.");
    d.update = [](int id, const Values &v) { return QStringLiteral(" update tblLibPublishers") + QStringLiteral(" set Publisher = ") + q(v[0]) + QStringLiteral(" where PublisherID = ") + n(id); };
    d.updated = QStringLiteral("Publisher is saved successfully");
    d.noneToEdit = QStringLiteral("Select a Publisher");
    d.confirmDelete = QStringLiteral("Do you want to delete the selected item?");
    d.phaseOut = [](int id) { return QStringLiteral("update tblLibPublishers set PhasedOut = true where Publisherid = ") + n(id); };
    d.deleted = QStringLiteral("Item is Phased Out");
    d.noneToDelete = QStringLiteral("No item selected");
    return d;
}

frmReferenceList::Definition authors()
{
    frmReferenceList::Definition d;
    d.objectName = QStringLiteral("frmAuthor");
    d.caption = QStringLiteral("Maintain Authors");
    d.fields = {{"txtAuthor", "Author Surname:"}, {"txtInitials", "Author First Name/Initials:"}, {"txtAuthorCode", "Author Code:"}};
    d.table = "tblLibAuthors";
    d.fieldColumns = {"AuthorSurname", "AuthorFirstName", "AuthorCode"};
    d.columns = {{"Surname", 26}, {"First Name/Initials", 22}, {"Code", 10}};
    d.searchBox = "txtSearch";
    d.allCaption = QStringLiteral("&All Authors");
    d.printHeading = QStringLiteral("Authors");
    d.addLocation = QStringLiteral("frmAuthorList");
    d.printLocation = QStringLiteral("frmAuthor");
    d.listAll = QStringLiteral("select AuthorID, AuthorSurname, Authorfirstname, AuthorCode from tblLibAuthors where PhasedOut = false order by authorsurname,authorfirstname");
    d.search = [](const QString &t) {
        return QStringLiteral("select AuthorID, Authorsurname, authorfirstname, AuthorCode from tblLibAuthors where phasedout = false and Authorsurname like '%") + t
               + QStringLiteral("%' order by authorsurname,authorfirstname");
    };
    d.missing = [](const Values &v) { return v[0].isEmpty() || v[2].isEmpty() ? QStringLiteral("Please complete the author information fields.") : QString(); };
    d.duplicates = [](const Values &v) {
        return std::vector<Check>{
            {QStringLiteral("Select * from tblLibAuthors where PhasedOut = False and Authorsurname = ") + q(v[0]) + QStringLiteral(" and authorfirstname = ") + q(v[1]),
             QStringLiteral("An author of the same name exists in the database.")},
            {QStringLiteral("Select * from tblLibAuthors where(PhasedOut = False and AuthorCode = ") + q(v[2]) + QStringLiteral(")"),
             QStringLiteral("The author code already exists, please change the code.")}};
    };
    // The code is stored with one trailing blank, as the screen always wrote it.
    d.insert = [](const Values &v) {
        return QStringLiteral("insert into tblLibAuthors(AuthorSurname,AuthorFirstName,AuthorCode) values(") + q(v[0]) + QLatin1Char(',') + q(v[1])
               + QStringLiteral(",'") + v[2] + QStringLiteral(" ')");
    };
    d.added = QStringLiteral("The author has been added to the database.");
    d.update = [](int id, const Values &v) {
        return QStringLiteral(" update tblLibAuthors") + QStringLiteral(" set Authorsurname = ") + q(v[0]) + QStringLiteral(" , AuthorCode = ") + q(v[2])
               + QStringLiteral(", authorfirstname = ") + q(v[1]) + QStringLiteral(" where AuthorID = ") + n(id);
    };
    d.updated = QStringLiteral("The author has been saved to the database.");
    d.noneToEdit = QStringLiteral("Please select an author to edit");
    d.confirmDelete = QStringLiteral("Do you want to delete the selected Author?");
    d.phaseOut = [](int id) { return QStringLiteral("Update tblLibAuthors set PhasedOut = true where Authorid = ") + n(id); };
    d.deleted = QStringLiteral("Author has been removed successfully");
    d.noneToDelete = QStringLiteral("Please select an author to delete.");
    return d;
}

frmReferenceList::Definition languages()
{
    auto d = singleName("txtLanguage", "Language:", "Languages", "tblLibItemLanguages", "ItemLanguage");
    d.objectName = QStringLiteral("frmLanguages");
    d.caption = QStringLiteral("Maintain Languages");
    d.searchBox = "txtLanguageSearch";
    d.printHeading = QStringLiteral("Languages");
    d.addLocation = d.printLocation = QStringLiteral("frmLanguages");
    d.listAll = QStringLiteral("select ItemLanguageID, ItemLanguage from tblLibItemLanguages where PhasedOut = false order by ItemLanguage");
    // Starts with, unlike the other lists.
    d.search = [](const QString &t) { return QStringLiteral("select ItemLanguageID, ItemLanguage from tblLibItemLanguages where (phasedout = false and ItemLanguage like '") + t + QStringLiteral("%') order by ItemLanguage"); };
    d.missing = [](const Values &v) { return v[0].isEmpty() ? QStringLiteral("Please Enter Language.") : QString(); };
    d.duplicates = [](const Values &v) {
        return std::vector<Check>{{QStringLiteral("Select * from tblLibItemLanguages where(PhasedOut = false and ItemLanguage = ") + q(v[0]) + QStringLiteral(")"),
                                   QStringLiteral("Language exists")}};
    };
    d.insert = [](const Values &v) { return QStringLiteral("insert into tblLibItemLanguages(ItemLanguage) values(") + q(v[0]) + QStringLiteral(")"); };
    d.added = QStringLiteral("Saved Successfully.");
    d.update = [](int id, const Values &v) { return QStringLiteral(" update tblLibItemLanguages") + QStringLiteral(" set ItemLanguage = ") + q(v[0]) + QStringLiteral(" where ItemLanguageID = ") + n(id); };
    d.updated = QStringLiteral("Saved Successfully");
    d.noneToEdit = QStringLiteral("Please select the language to edit");
    d.confirmDelete = QStringLiteral("Do you want to delete the selected language?");
    d.phaseOut = [](int id) { return QStringLiteral("update tblLibItemLanguages set PhasedOut = true where ItemLanguageID = ") + n(id); };
    d.deleted = QStringLiteral("Language is Phased Out");
    d.noneToDelete = QStringLiteral("Please select the language to delete");
    return d;
}

frmReferenceList::Definition subjects()
{
    frmReferenceList::Definition d;
    d.objectName = QStringLiteral("frmSubjectsList");
    d.caption = QStringLiteral("Maintain Subject Classification Codes");
    d.fields = {{"txtSubject", "Subject:"}, {"txtClassificationNo", "Classification No."}};
    d.table = "tblLibSubjectCodes";
    d.fieldColumns = {"SubjectDescription", "ClassificationNo"};
    d.columns = {{"Subject", 40}, {"Classific. No.", 14}};
    d.searchBox = "txtSubjectSearch";
    d.printHeading = d.caption + QStringLiteral(" - Subjects List");
    d.addLocation = QStringLiteral("frmSubjectsList");
    d.printLocation = QStringLiteral("frmSubjectlist");
    d.listAll = clsTSQL().spSubjectsList();
    d.search = [](const QString &t) { return clsTSQL().spSubjectsSearch(t); };
    d.missing = [](const Values &v) { return v[0].isEmpty() || v[1].isEmpty() ? QStringLiteral("Please complete the data fields.") : QString(); };
    // Phased-out subjects count too: a classification number is never given twice.
    d.duplicates = [](const Values &v) {
        return std::vector<Check>{{QStringLiteral("Select * from tblLibSubjectCodes where classificationno = ") + q(v[1]),
                                   QStringLiteral("This classification number already exists")}};
    };
    d.insert = [](const Values &v) {
        return QStringLiteral("insert into tblLibSubjectCodes(SubjectDescription,ClassificationNo) values(") + q(v[0]) + QLatin1Char(',') + q(v[1]) + QStringLiteral(")");
    };
    d.added = QStringLiteral("Saved Successfully.");
    d.update = [](int id, const Values &v) {
        return QStringLiteral(" Update tblLibSubjectCodes") + QStringLiteral(" Set SubjectDescription = ") + q(v[0]) + QStringLiteral(" , ClassificationNo = ")
               + q(v[1]) + QStringLiteral(" where [ID] = ") + n(id);
    };
    d.updated = QStringLiteral("Saved Successfully");
    d.noneToEdit = QStringLiteral("Please select a subject to edit");
    d.inUse = [](int, const Values &v) {
        return std::vector<Check>{{QStringLiteral(" select * From tblLibItems")
                                       + QStringLiteral(" where ClassificationNo in (select ClassificationNo from tblLibSubjectCodes where ClassificationNo = ") + q(v[1]) + QStringLiteral(")")
                                       + QStringLiteral(" and MainSubject in (select SubjectDescription from tblLibSubjectCodes where SubjectDescription = ") + q(v[0]) + QStringLiteral(")"),
                                   QStringLiteral("Item is in use, it cannot be deleted")}};
    };
    d.confirmDelete = QStringLiteral("Do you want to delete the selected item?");
    d.phaseOut = [](int id) { return clsTSQL().spSubjectsPhaseOut(id); };
    d.deleted = QStringLiteral("Item Deleted");
    d.noneToDelete = QStringLiteral("Please select an item to delete");
    return d;
}

frmReferenceList::Definition keywords()
{
    frmReferenceList::Definition d;
    d.objectName = QStringLiteral("frmKeywordList");
    d.caption = QStringLiteral("Maintain Search Keywords");
    d.fields = {{"txtKeyEng", "English Keyword:"}, {"txtKeyAfr", "Afrikaans Keyword:"}};
    d.table = "tblLibKeywords";
    d.fieldColumns = {"KeywordEng", "KeywordAfr"};
    d.columns = {{"English Keyword", 30}, {"Afrikaans Keyword", 30}};
    d.printHeading = QStringLiteral("Search Keyword List");
    d.addLocation = d.printLocation = QStringLiteral("frmKeywordList");
    d.listAll = clsTSQL().spKeywords(clsTSQL::KeywordsAll);
    d.search = [](const QString &t) { return clsTSQL().spKeywords(clsTSQL::KeywordsContaining, t); };
    d.missing = [](const Values &v) { return v[0].isEmpty() && v[1].isEmpty() ? QStringLiteral("Both keywords may not be empty") : QString(); };
    d.differentTexts = [](const Values &v, bool updating) {
        if (v[0] != v[1])
            return QString();
        return updating ? QStringLiteral("The English and Afrikaans Keywords can not be the same, rather leave one empty.")
                        : QStringLiteral("The English and Afrikaans Keywords may not be the same, rather leave one empty.");
    };
    d.duplicates = [](const Values &v) {
        const QString condition = v[0].isEmpty() ? QStringLiteral("Where KeywordAfr = ") + q(v[1])
                                                 : QStringLiteral("Where KeywordEng = ") + q(v[0]) + QStringLiteral(" Or KeywordAfr = ") + q(v[1]);
        return std::vector<Check>{{clsTSQL().spKeywordsExist(condition), QStringLiteral("The keyword\\s already exist.")}};
    };
    d.updateChecks = d.duplicates;
    d.insert = [](const Values &v) { return clsTSQL().spKeywordsInsert(v[0], v[1]); };
    d.added = QStringLiteral("Saved Successfully");
    d.update = [](int id, const Values &v) { return clsTSQL().spKeywordsUpdate(id, v[0], v[1]); };
    d.updated = QStringLiteral("Saved Successfully");
    d.noneToEdit = QStringLiteral("Please select a keyword set to edit");
    d.inUse = [](int id, const Values &) { return std::vector<Check>{{clsTSQL().spKeywordsLinked(id), QStringLiteral("Keyword is in use, it cannot be deleted")}}; };
    d.confirmDelete = QStringLiteral("Do you want to delete the selected keyword set?");
    d.phaseOut = [](int id) { return clsTSQL().spKeywordsDelete(id); }; // the one list whose rows are really removed
    d.deleted = QStringLiteral("Keyword Set Deleted");
    d.noneToDelete = QStringLiteral("Please select a keyword set to delete");
    return d;
}

} // namespace

frmSeries::frmSeries(QWidget *parent) : frmReferenceList(series(), parent) {}
frmPublisher::frmPublisher(QWidget *parent) : frmReferenceList(publishers(), parent) {}
frmAuthor::frmAuthor(QWidget *parent) : frmReferenceList(authors(), parent) {}
frmLanguages::frmLanguages(QWidget *parent) : frmReferenceList(languages(), parent) {}
frmSubjectsList::frmSubjectsList(QWidget *parent) : frmReferenceList(subjects(), parent) {}
frmKeywordList::frmKeywordList(QWidget *parent) : frmReferenceList(keywords(), parent) {}
