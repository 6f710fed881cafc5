#include "clsTSQL.h"

#include "Clock.h"
#include "SqlText.h"

namespace {

QString n(qint64 v) { return QString::number(v); }
QString n(double v) { return QString::number(v, 'g', 15); }
QString jetBool(bool b) { return b ? QStringLiteral("True") : QStringLiteral("False"); }

// A classification number goes in bare when it is a number (the column converts it),
// quoted when it is text, and as Null when empty.
QString classification(const QString &value)
{
    const QString t = value.trimmed();
    if (t.isEmpty())
        return QStringLiteral("Null");
    bool numeric = false;
    t.toDouble(&numeric);
    return numeric ? t : QLatin1Char('\'') + Safesql(t) + QLatin1Char('\'');
}

const QString SubCategoryBase = QStringLiteral(
    "Select sc.SubCategoryID, s.CategoryID, s.Category, sc.SubCategory from tblLibSubCategories as sc "
    "inner join tblLibCategories as s on sc.CategoryID = s.CategoryID where sc.PhasedOut = false and s.PhasedOut = false");
const QString SubCategoryOrder = QStringLiteral(" order by s.Category");
const QString SubjectColumns = QStringLiteral("Select Id, SubjectDescription,ClassificationNo from tblLibSubjectCodes");

// The member-type-keyed layout: learners 1, educators 2, parents 3, each in its own central table.
struct MemberTable {
    const char *table;
    const char *key;
    int typeID;
};
constexpr MemberTable Learners{"Learner_Info", "ID", 1};
constexpr MemberTable Educators{"Educators", "EdID", 2};
constexpr MemberTable Parents{"Parent_Info", "ParentID", 3};

const QString TransactionBase = QStringLiteral(
    " select t.TransactionID, t.MemberTypeID, t.MemberID, m.SName, m.FName, t.ItemID, i.Title, t.IssueDate, t.ReturnDate, t.Returned"
    " from (tblLibTransactions t inner join tblLibItems i on i.ItemID = t.ItemID)");
QString transactionList(const MemberTable &m, const QString &surname)
{
    QString sql = TransactionBase + QStringLiteral(" inner join ") + QLatin1String(m.table) + QStringLiteral(" m on m.") + QLatin1String(m.key)
                  + QStringLiteral(" = t.MemberID where t.Returned = false and t.MemberTypeID = ") + n(qint64(m.typeID));
    if (!surname.isNull())
        sql += QStringLiteral(" and m.SName like '") + surname + QStringLiteral("%'");
    return sql + QStringLiteral(" order by m.SName, m.FName");
}

const QString ReservedBase = QStringLiteral(
    " select r.ReserveID, r.MemberTypeID, r.MemberID, r.ItemID, i.Title, r.ReserveDate, r.CollectionDate, r.FromDate, r.ToDate,"
    " r.Collected, r.Canceled from (tblLibReserves r inner join tblLibItems i on i.ItemID = r.ItemID)");
QString reservedList(const MemberTable &m, const QString &surname)
{
    return ReservedBase + QStringLiteral(" inner join ") + QLatin1String(m.table) + QStringLiteral(" m on m.") + QLatin1String(m.key)
           + QStringLiteral(" = r.MemberID where r.Canceled = false and r.MemberTypeID = ") + n(qint64(m.typeID))
           + QStringLiteral(" and m.SName like '") + surname + QStringLiteral("%' order by r.ReserveDate");
}

const QString FineColumns = QStringLiteral("Select FineID, FineAmount, FineInterval, FineDate, EffectiveDate from tblLibFines");
const QString TransactionFinesBase = QStringLiteral(
    " select tf.TransactionID, tf.FineID, tf.Amount, tf.Paid, t.MemberTypeID, t.MemberID, t.ItemID, i.Title"
    " from (tblLibTransactionFines tf inner join tblLibTransactions t on t.TransactionID = tf.TransactionID)"
    " inner join tblLibItems i on i.ItemID = t.ItemID");
QString transactionFinesList(int memberTypeID)
{
    return TransactionFinesBase + QStringLiteral(" where tf.Paid = false and t.MemberTypeID = ") + n(qint64(memberTypeID))
           + QStringLiteral(" order by t.MemberID");
}

QString itemColumnValues(const ItemDetails &it)
{
    return QLatin1Char('\'') + Safesql(it.accessionID) + QStringLiteral("',") + n(qint64(it.categoryID)) + QLatin1Char(',')
           + n(qint64(it.subCategoryID)) + QLatin1Char(',') + classification(it.classificationNo) + QStringLiteral(",'")
           + Safesql(it.mainSubject) + QStringLiteral("','") + Safesql(it.title) + QStringLiteral("','") + Safesql(it.byLine)
           + QStringLiteral("',") + n(qint64(it.author1)) + QLatin1Char(',') + n(qint64(it.author2)) + QLatin1Char(',')
           + n(qint64(it.author3)) + QLatin1Char(',') + n(qint64(it.publisher)) + QLatin1Char(',') + n(qint64(it.yearPublished))
           + QLatin1Char(',') + n(qint64(it.itemLanguageID)) + QStringLiteral(",'") + Safesql(it.isbn) + QStringLiteral("','")
           + Safesql(it.barcode) + QStringLiteral("',") + n(qint64(it.seriesID)) + QLatin1Char(',') + n(it.cost) + QLatin1Char(',')
           + jetBool(it.referenceItem) + QLatin1Char(',')
           + (it.datePurchased.isValid() ? JetDate(it.datePurchased) : QStringLiteral("Null"));
}

} // namespace

QString clsTSQL::spCategoriesList() const
{
    return QStringLiteral("Select CategoryID,Category from tblLibCategories where PhasedOut = false order by Category");
}

QString clsTSQL::spCategoriesGetRecord(int categoryID) const
{
    return QStringLiteral("Select CategoryID,Category from tblLibCategories where PhasedOut = false and CategoryID = ") + n(qint64(categoryID))
           + QStringLiteral(" order by Category");
}

QString clsTSQL::spCategoriesSearch(const QString &text) const
{
    return QStringLiteral("Select CategoryID,Category from tblLibCategories where PhasedOut = false and Category Like '%") + text
           + QStringLiteral("%' order by Category");
}

QString clsTSQL::spCategoriesInsert(const QString &name) const
{
    return QStringLiteral(" Insert into") + QStringLiteral(" tblLibCategories(Category)") + QStringLiteral(" Values ('") + Safesql(name)
           + QStringLiteral("')");
}

QString clsTSQL::spCategoriesUpdate(int categoryID, const QString &name) const
{
    return QStringLiteral(" Update tblLibCategories") + QStringLiteral(" Set Category = '") + name + QStringLiteral("'")
           + QStringLiteral(" Where CategoryID = ") + n(qint64(categoryID));
}

QString clsTSQL::spCategoriesPhaseOut(int categoryID) const
{
    return QStringLiteral(" Update tblLibCategories") + QStringLiteral(" Set PhasedOut = true") + QStringLiteral("    ,PhasedOutDate = Date()")
           + QStringLiteral(" Where CategoryID = ") + n(qint64(categoryID));
}

QString clsTSQL::spSubCategoriesBulkPhaseOut(int categoryID) const
{
    return QStringLiteral(" Update tblLibSubCategories") + QStringLiteral(" Set PhasedOut = true")
           + QStringLiteral("    ,PhasedOutDate = Date()") + QStringLiteral(" Where CategoryID = ") + n(qint64(categoryID));
}

QString clsTSQL::spSubCategoriesList() const { return SubCategoryBase + SubCategoryOrder; }

QString clsTSQL::spSubCategoriesGetRecord(int subCategoryID) const
{
    return SubCategoryBase + QStringLiteral(" and sc.SubCategoryID = ") + n(qint64(subCategoryID)) + SubCategoryOrder;
}

QString clsTSQL::spSubCategoriesGetRecordByCategory(const QString &categoryName) const
{
    return SubCategoryBase + QStringLiteral(" and s.Category = '") + categoryName + QStringLiteral("'") + SubCategoryOrder;
}

QString clsTSQL::spSubCategoriesSearch(int categoryID, const QString &text) const
{
    return SubCategoryBase + QStringLiteral(" and s.CategoryID = ") + n(qint64(categoryID)) + QStringLiteral(" and sc.SubCategory like '%")
           + text + QStringLiteral("%'") + SubCategoryOrder;
}

QString clsTSQL::spSubCategoriesInsert(int categoryID, const QString &name) const
{
    return QStringLiteral(" Insert into") + QStringLiteral(" tblLibSubCategories(CategoryID,SubCategory)") + QStringLiteral(" Values (")
           + n(qint64(categoryID)) + QStringLiteral(",'") + Safesql(name) + QStringLiteral("')");
}

QString clsTSQL::spSubCategoriesUpdate(int subCategoryID, const QString &name) const
{
    return QStringLiteral(" Update tblLibSubCategories") + QStringLiteral(" Set SubCategory = '") + name + QStringLiteral("'")
           + QStringLiteral(" Where SubCategoryID = ") + n(qint64(subCategoryID));
}

QString clsTSQL::spSubCategoriesPhaseOut(int subCategoryID) const
{
    return QStringLiteral(" Update tblLibSubCategories") + QStringLiteral(" Set PhasedOut = true")
           + QStringLiteral("    ,PhasedOutDate = Date()") + QStringLiteral(" Where SubCategoryID = ") + n(qint64(subCategoryID));
}

QString clsTSQL::spSubjectsList() const
{
    return QStringLiteral("Select Id, SubjectDescription,ClassificationNo from tblLibSubjectCodes where phasedout = false order by SubjectDescription");
}

QString clsTSQL::spSubjectsLists(const QString &pattern) const
{
    return SubjectColumns + QStringLiteral(" where SubjectDescription Like '") + Safesql(pattern) + QStringLiteral("' order by SubjectDescription");
}

QString clsTSQL::spMasterBookList() const
{
    return QStringLiteral("Select Id, Title, ISBNCode from tblLibBook where phasedout = false order by Title");
}

QString clsTSQL::spBooksList() const
{
    return QStringLiteral("Select Id, Title from tblLibBook where phasedout = false order by Title");
}

QString clsTSQL::spSubjectsGetRecord(int id) const { return SubjectColumns + QStringLiteral(" where [ID] = ") + n(qint64(id)); }

QString clsTSQL::spSubjectsSearch(const QString &text) const
{
    return SubjectColumns + QStringLiteral(" where SubjectDescription Like '%") + text
           + QStringLiteral("%' and phasedout = false order by SubjectDescription");
}

QString clsTSQL::spSubjectsInsert(const QString &description, const QString &classificationNo) const
{
    return QStringLiteral(" Insert into tblLibSubjectCodes(SubjectDescription,ClassificationNo)") + QStringLiteral(" Values('")
           + Safesql(description) + QStringLiteral("',") + classification(classificationNo) + QStringLiteral(")");
}

QString clsTSQL::spSubjectsSearchs(const QString &prefix) const
{
    return SubjectColumns + QStringLiteral(" where strSubject like '") + Safesql(prefix) + QStringLiteral("%' order by SubjectDescription");
}

QString clsTSQL::spSubjectsUpdate(int id, const QString &description, const QString &classificationNo) const
{
    return QStringLiteral(" Update tblLibSubjectCodes") + QStringLiteral(" Set SubjectDescription = '") + Safesql(description)
           + QStringLiteral("'") + QStringLiteral(" , ClassificationNo = '") + Safesql(classificationNo) + QStringLiteral("'")
           + QStringLiteral(" where [ID] = ") + n(qint64(id));
}

QString clsTSQL::spSubjectsPhaseOut(int id) const
{
    return QStringLiteral(" Update tblLibSubjectCodes") + QStringLiteral(" Set PhasedOut = true") + QStringLiteral(" where [ID] = ") + n(qint64(id));
}

QString clsTSQL::spSchoolGradesList() const
{
    return QStringLiteral("Select id,name from schoolgrades where schoolgrade ='Yes' and id < 14");
}

QString clsTSQL::spSchoolGradesListSpesific(const QString &year) const
{
    return QStringLiteral("Select SG.ID, SG.Name from SchoolGrades as SG Inner Join Learner_Info as LI ON SG.ID = LI.Grade ")
           + QStringLiteral("Where SG.SchoolGrade = 'Yes' AND LI.Status = 'C' And year(thedate)<= '") + year + QStringLiteral("' ")
           + QStringLiteral("Group By SG.ID,SG.Name Order By SG.ID");
}

QString clsTSQL::spClassesList() const { return QStringLiteral("Select classid, classname from classes order by grade,classname"); }

QString clsTSQL::spClassesListSpesific(const QString &gradeName, const QString &year) const
{
    QString sql = QStringLiteral("Select Classes.ClassID, Classes.ClassName from (Classes Inner Join Learner_Info as LI ON Classes.ClassID = LI.Class) ")
                  + QStringLiteral("Inner Join SchoolGrades as SG ON SG.ID = LI.Grade ")
                  + QStringLiteral("Where SG.SchoolGrade = 'Yes' AND LI.Status = 'C' And year(thedate)<= '") + year + QStringLiteral("' ");
    if (gradeName != QLatin1String("All"))
        sql += QStringLiteral(" AND SG.Name = '") + gradeName + QStringLiteral("' ");
    return sql + QStringLiteral("Group By Classes.ClassID, Classes.ClassName Order By Classes.ClassName");
}

QString clsTSQL::spItemsList() const
{
    return QStringLiteral(
               "Select i.ItemID, i.AccessionID, i.Title, i.CategoryID, c.Category, i.SubCategoryID, sc.SubCategory, i.ShelfNumber, "
               "il.ItemLanguage, s.Series, i.LoanType from (((tblLibItems as i inner join tblLibCategories as c on i.CategoryID = c.CategoryID) "
               "inner join tblLibSubCategories as sc on i.SubCategoryID = sc.SubCategoryID) "
               "left join tblLibItemLanguages as il on i.ItemLanguageID = il.ItemLanguageID) "
               "left join tblLibSeries as s on i.SeriesID = s.SeriesID "
               "where i.PhasedOut = false and sc.PhasedOut = false and c.PhasedOut = false ")
           + QStringLiteral("and i.ItemID not in (select ItemID from tblLibTransactions where Returned= false)")
           + QStringLiteral("and i.ItemID not in (select ItemID from tblLibReserves where ((Canceled = false)))")
           + QStringLiteral(" order by i.Title, i.AccessionID");
}

QString clsTSQL::spItemsGetLastID() const { return QStringLiteral("select top 1 ItemID from tblLibItems order by itemid desc"); }

QString clsTSQL::spItemsGetEntryNo(const QString &subject) const
{
    return QStringLiteral("select count(*) from tblLibItems where tblLibItems.MainSubject Like '") + Safesql(subject) + QStringLiteral("'");
}

QString clsTSQL::spItemsGetRecord(int itemID) const
{
    return QStringLiteral(
               "SELECT i.*, il.*, (a1.AuthorSurname + ', ' + a1.AuthorFirstName) AS strAuthor1, "
               "(a2.AuthorSurname + ', ' + a2.AuthorFirstName) AS strAuthor2, (a3.AuthorSurname + ', ' + a3.AuthorFirstName) AS strAuthor3, "
               "p.Publisher AS strPublisher, c.Category, sc.SubCategory, s.Series "
               "FROM (((((((tblLibItems AS i LEFT JOIN tblLibItemLanguages AS il ON i.ItemLanguageID = il.ItemLanguageID) "
               "LEFT JOIN tblLibAuthors AS a1 ON i.Author1 = a1.AuthorID) LEFT JOIN tblLibAuthors AS a2 ON i.Author2 = a2.AuthorID) "
               "LEFT JOIN tblLibAuthors AS a3 ON i.Author3 = a3.AuthorID) LEFT JOIN tblLibPublishers AS p ON i.Publisher = p.PublisherID) "
               "LEFT JOIN tblLibCategories AS c ON i.CategoryID = c.CategoryID) LEFT JOIN tblLibSubCategories AS sc ON i.SubCategoryID = sc.SubCategoryID) "
               "LEFT JOIN tblLibSeries AS s ON i.SeriesID = s.SeriesID WHERE i.ItemID = ")
           + n(qint64(itemID));
}

QString clsTSQL::spItemsInsert(const ItemDetails &item) const
{
    return QStringLiteral(" Insert into tblLibItems (AccessionID, CategoryID, SubCategoryID, ClassificationNo, Mainsubject, Title, ByLine, "
                          "Author1, Author2, Author3, Publisher, YearPublished, ItemLanguageID, ISBN, Barcode, SeriesID, Cost, ReferenceItem, "
                          "DatePurchased, DateAdded, Restricted, LoanType, shelfnumber, Edition)")
           + QStringLiteral(" Values (") + itemColumnValues(item) + QLatin1Char(',') + JetDate(Clock::today())
           + QStringLiteral(",false,'N','") + Safesql(item.shelfNumber) + QStringLiteral("',") + n(qint64(item.edition))
           + QStringLiteral(")");
}

QString clsTSQL::spMasterInsert(const MasterCatalogueEntry &e) const
{
    return QStringLiteral(" Insert into tblLibMasterCatalogue (CategoryID, SubCategoryID, Title, Author, ContactDetails, Publisher, "
                          "YearPublished, ItemLanguageID, ISBN, Barcode, RetailPrice, Grade, MainSubject)")
           + QStringLiteral(" Values (") + n(qint64(e.categoryID)) + QLatin1Char(',') + n(qint64(e.subCategoryID)) + QStringLiteral(",'")
           + Safesql(e.title) + QStringLiteral("','") + Safesql(e.author) + QStringLiteral("','") + Safesql(e.contactDetails)
           + QStringLiteral("','") + Safesql(e.publisher) + QStringLiteral("',") + n(qint64(e.yearPublished)) + QLatin1Char(',')
           + n(qint64(e.itemLanguageID)) + QStringLiteral(",'") + Safesql(e.isbn) + QStringLiteral("','") + Safesql(e.barcode)
           + QStringLiteral("',") + n(e.retailPrice) + QStringLiteral(",'") + Safesql(e.grade) + QStringLiteral("','")
           + Safesql(e.mainSubject) + QStringLiteral("')");
}

QString clsTSQL::spItemsSetAccessionNumber(const QString &accessionID, const QString &mainSubject) const
{
    return QStringLiteral(" Update tblLibItems") + QStringLiteral(" Set AccessionID = '") + Safesql(accessionID) + QStringLiteral("'")
           + QStringLiteral(" Where MainSubject = '") + Safesql(mainSubject) + QStringLiteral("'");
}

QString clsTSQL::spItemsUpdate(int itemID, const ItemDetails &it) const
{
    return QStringLiteral(" Update tblLibItems Set AccessionID = '") + Safesql(it.accessionID) + QStringLiteral("', CategoryID = ")
           + n(qint64(it.categoryID)) + QStringLiteral(", SubCategoryID = ") + n(qint64(it.subCategoryID))
           + QStringLiteral(", ClassificationNo = ") + classification(it.classificationNo) + QStringLiteral(", MainSubject = '")
           + Safesql(it.mainSubject) + QStringLiteral("', Title = '") + Safesql(it.title) + QStringLiteral("', ByLine = '")
           + Safesql(it.byLine) + QStringLiteral("', Author1 = ") + n(qint64(it.author1)) + QStringLiteral(", Author2 = ")
           + n(qint64(it.author2)) + QStringLiteral(", Author3 = ") + n(qint64(it.author3)) + QStringLiteral(", Publisher = ")
           + n(qint64(it.publisher)) + QStringLiteral(", YearPublished = ") + n(qint64(it.yearPublished))
           + QStringLiteral(", ItemLanguageID = ") + n(qint64(it.itemLanguageID)) + QStringLiteral(", ISBN = '") + Safesql(it.isbn)
           + QStringLiteral("', Barcode = '") + Safesql(it.barcode) + QStringLiteral("', SeriesID = ") + n(qint64(it.seriesID))
           + QStringLiteral(", Cost = ") + n(it.cost) + QStringLiteral(", ReferenceItem = ") + jetBool(it.referenceItem)
           + QStringLiteral(", DatePurchased = ") + (it.datePurchased.isValid() ? JetDate(it.datePurchased) : QStringLiteral("Null"))
           + QStringLiteral(", ShelfNumber = '") + Safesql(it.shelfNumber) + QStringLiteral("', Edition = ") + n(qint64(it.edition))
           + QStringLiteral(", PhasedOut = False, PhasedOutDate = Null, PhasedOutReason = Null") + QStringLiteral(" Where ItemID = ")
           + n(qint64(itemID));
}

QString clsTSQL::spItemsUpdateRole(int itemID, bool restricted, const QString &loanType) const
{
    return QStringLiteral(" update tblLibItems") + QStringLiteral(" set Restricted = ") + jetBool(restricted)
           + QStringLiteral("   ,LoanType = '") + Safesql(loanType) + QStringLiteral("'") + QStringLiteral(" where ItemID = ") + n(qint64(itemID));
}

QString clsTSQL::spItemsPhasedOut(int itemID, const QDate &date, const QString &reason) const
{
    return QStringLiteral(" Update tblLibItems") + QStringLiteral(" Set PhasedOut = true") + QStringLiteral(" ,PhasedOutDate = ")
           + JetDate(date) + QStringLiteral(" ,PhasedOutReason = '") + reason + QStringLiteral("'") + QStringLiteral(" Where ItemID = ")
           + n(qint64(itemID));
}

QString clsTSQL::spItemLastAccession() const
{
    return QStringLiteral("Select AccessionID from tblLibItems where ItemID = (select max(ItemID) from tblLibItems)");
}

QString clsTSQL::spLearnerPhoto(int learnerID) const
{
    return QStringLiteral("Select Photoname from Learner_Info where Status = 'C' and [ID] = ") + n(qint64(learnerID));
}

QString clsTSQL::spCatalogue(const QString &accessionID) const
{
    return QStringLiteral(" SELECT * ") + QStringLiteral(" FROM tblLibItems ") + QStringLiteral(" where tblLibItems.AccessionID = '")
           + accessionID + QStringLiteral("'");
}

QString clsTSQL::spMemberTypesList() const
{
    return QStringLiteral("Select MemberTypeID, MemberType from tblLibMemberTypes order by MemberTypeID");
}

QString clsTSQL::spMembers(const QString &memberKind) const
{
    if (memberKind == QLatin1String("P"))
        return QStringLiteral("Select ParentID as mID, sName & '_' & fName & '_' & IDNumber as mCombined from Parent_Info "
                              "where IDNumber is not null and IDNumber <> '' order by sname");
    if (memberKind == QLatin1String("E"))
        return QStringLiteral("Select EdID as mID, sName & '_' & fName & '_' & IDNumber as mCombined from Educators "
                              "where IDNumber is not null and IDNumber <> '' order by sname");
    return QStringLiteral("Select ID as mID, sName & '_' & fName & '_' & IDNo as mCombined from Learner_Info "
                          "where IDNo is not null and IDNo <> '' order by sname");
}

QString clsTSQL::spLearnersList(const QString &year) const
{
    return QStringLiteral("SELECT Learner_Info.ID, Learner_Info.AccessionNo, Learner_Info.SName, Learner_Info.FName, SchoolGrades.Name, "
                          "Classes.ClassName FROM (Learner_Info INNER JOIN SchoolGrades ON Learner_Info.Grade = SchoolGrades.ID) "
                          "LEFT JOIN Classes ON Learner_Info.Class = Classes.ClassID WHERE Learner_Info.Status = 'C' And year(thedate)<= '")
           + year + QStringLiteral("' ORDER BY sname, fname");
}

QString clsTSQL::getMemberNameES(const QString &memberKind, int memberID) const
{
    if (memberKind == QLatin1String("S"))
        return QStringLiteral("Select sName & ', ' & fName as mName from StaffMembers Where StaffID = ") + n(qint64(memberID));
    if (memberKind == QLatin1String("E"))
        return QStringLiteral("Select sName & ', ' & fName as mName from Educators Where EdID = ") + n(qint64(memberID));
    return QString();
}

QString clsTSQL::spLearnersListSpesific(const QString &gradeName, const QString &className, const QString &year) const
{
    QString sql = QStringLiteral("SELECT Learner_Info.ID, Learner_Info.AccessionNo, Learner_Info.SName, Learner_Info.FName, SchoolGrades.Name, "
                                 "Classes.ClassName FROM (Learner_Info INNER JOIN SchoolGrades ON Learner_Info.Grade = SchoolGrades.ID) "
                                 "LEFT JOIN Classes ON Learner_Info.Class = Classes.ClassID WHERE Learner_Info.Status = 'C' "
                                 "AND SchoolGrades.schoolgrade ='Yes' And year(thedate)<= '")
                  + year + QStringLiteral("' ");
    if (gradeName != QLatin1String("All"))
        sql += QStringLiteral(" AND SchoolGrades.Name = '") + gradeName + QStringLiteral("' ");
    if (className != QLatin1String("All"))
        sql += QStringLiteral(" AND Classes.Classname = '") + className + QStringLiteral("'");
    return sql + QStringLiteral(" ORDER BY sname, fname");
}

QString clsTSQL::spTransactionLearnersList() const { return transactionList(Learners, QString()); }
QString clsTSQL::spTransactionEducatorsList() const { return transactionList(Educators, QString()); }
QString clsTSQL::spTransactionParentsList() const { return transactionList(Parents, QString()); }

QString clsTSQL::spTransactionGetRecord(int transactionID) const
{
    return QStringLiteral(" select t.TransactionID, t.MemberTypeID, t.MemberID, t.ItemID, i.Title, t.IssueDate, t.ReturnDate, t.Returned, "
                          "t.ActualReturnedDate, t.Fine from tblLibTransactions t inner join tblLibItems i on i.ItemID = t.ItemID "
                          "where t.TransactionID = ")
           + n(qint64(transactionID));
}

QString clsTSQL::spTransactionGetItemRecord(int itemID) const
{
    return QStringLiteral(" select t.TransactionID, t.MemberTypeID, t.MemberID, t.ItemID, i.Title, t.IssueDate, t.ReturnDate, t.Returned, t.ActualReturnedDate, t.Fine")
           + QStringLiteral(" from tblLibTransactions t") + QStringLiteral(" inner join tblLibItems i on i.ItemID = t.ItemID")
           + QStringLiteral(" where t.Returned = false and t.ItemID = ") + n(qint64(itemID));
}

QString clsTSQL::spTransactionLearnersSearch(const QString &surname) const
{
    return transactionList(Learners, surname);
}
QString clsTSQL::spTransactionEducatorsSearch(const QString &surname) const
{
    return transactionList(Educators, surname);
}
QString clsTSQL::spTransactionParentsSearch(const QString &surname) const
{
    return transactionList(Parents, surname);
}

QString clsTSQL::spTransactionInsert(int memberTypeID, int memberID, int itemID, const QDate &issueDate, const QDate &returnDate) const
{
    return QStringLiteral(" Insert into tblLibTransactions (MemberTypeID, MemberID, ItemID, IssueDate, ReturnDate, Returned)")
           + QStringLiteral(" Values (") + n(qint64(memberTypeID)) + QLatin1Char(',') + n(qint64(memberID)) + QLatin1Char(',')
           + n(qint64(itemID)) + QLatin1Char(',') + JetDate(issueDate) + QLatin1Char(',') + JetDate(returnDate) + QStringLiteral(",false)");
}

QString clsTSQL::spTransactionUpdate(const QString &accessionID, const QDate &returnedDate) const
{
    return QStringLiteral(" Update tblLibTransactions Set ActualReturnedDate = #") + returnedDate.toString(QStringLiteral("dd/MM/yyyy"))
           + QStringLiteral("#, Returned = true ")
           + QStringLiteral("where transactionID in(Select Max (transactionid) as LastTransaction from  tbllibTransactions where AccessionID = '")
           + accessionID + QStringLiteral(" ')");
}

QString clsTSQL::spTransactionReturn(int transactionID, const QDate &returnedDate, double fine) const
{
    return QStringLiteral(" Update tblLibTransactions Set ActualReturnedDate = ") + JetDate(returnedDate) + QStringLiteral(", Fine = ")
           + n(fine) + QStringLiteral(", Returned = true Where TransactionID = ") + n(qint64(transactionID));
}

QString clsTSQL::spReservedList() const { return ReservedBase + QStringLiteral(" where r.Canceled = false order by r.ReserveDate"); }

QString clsTSQL::spReservedGetRecord(int reserveID) const
{
    return ReservedBase + QStringLiteral(" where r.ReserveID = ") + n(qint64(reserveID));
}

QString clsTSQL::spReservedGetItemRecord(int itemID) const
{
    return QStringLiteral(" select ReserveID, MemberTypeID, MemberID, ItemID, ReserveDate, CollectionDate, FromDate, ToDate, Collected, Canceled")
           + QStringLiteral(" from tblLibReserves")
           + QStringLiteral(" where ToDate > date() and Collected = false and Canceled = false and ItemID = ") + n(qint64(itemID));
}

QString clsTSQL::spReservedSearch(const QString &title) const
{
    return ReservedBase + QStringLiteral(" where r.Canceled = false and i.Title like '") + title + QStringLiteral("%' order by r.ReserveDate");
}

QString clsTSQL::spReservedLearnersSearch(const QString &surname) const
{
    return reservedList(Learners, surname);
}
QString clsTSQL::spReservedEducatorsSearch(const QString &surname) const
{
    return reservedList(Educators, surname);
}
QString clsTSQL::spReservedParentsSearch(const QString &surname) const
{
    return reservedList(Parents, surname);
}

QString clsTSQL::spReservedInsert(int memberTypeID, int memberID, int itemID, const QDate &fromDate, const QDate &toDate) const
{
    return QStringLiteral(" Insert into tblLibReserves (MemberTypeID, MemberID, ItemID, ReserveDate, FromDate, ToDate, Collected, Canceled)")
           + QStringLiteral(" Values (") + n(qint64(memberTypeID)) + QLatin1Char(',') + n(qint64(memberID)) + QLatin1Char(',')
           + n(qint64(itemID)) + QStringLiteral(",Date(),") + JetDate(fromDate) + QLatin1Char(',') + JetDate(toDate)
           + QStringLiteral(",false,false)");
}

QString clsTSQL::spReservedUpdate(int reserveID, bool collected, bool canceled) const
{
    return QStringLiteral(" Update tblLibReserves Set Collected = ") + jetBool(collected) + QStringLiteral(", CollectionDate = ")
           + (collected ? QStringLiteral("Date()") : QStringLiteral("Null")) + QStringLiteral(", Canceled = ") + jetBool(canceled)
           + QStringLiteral(" Where ReserveID = ") + n(qint64(reserveID));
}

QString clsTSQL::spFinesList() const { return FineColumns + QStringLiteral(" where PhasedOut = false order by EffectiveDate desc"); }

QString clsTSQL::spFinesCurrent() const
{
    return QStringLiteral("Select top 1 FineID, FineAmount, FineInterval, FineDate, EffectiveDate from tblLibFines")
           + QStringLiteral(" where  effectiveDate between dateadd('yyyy',-2,date()) and date()")
           + QStringLiteral(" order by effectiveDate desc");
}

QString clsTSQL::spFinesGetRecord(int fineID) const { return FineColumns + QStringLiteral(" where FineID = ") + n(qint64(fineID)); }

QString clsTSQL::spFinesSearch(const QDate &effectiveDate) const
{
    return FineColumns + QStringLiteral(" where PhasedOut = false and EffectiveDate >= ") + JetDate(effectiveDate)
           + QStringLiteral(" order by EffectiveDate desc");
}

QString clsTSQL::spFinesInsert(double amount, int interval, const QDate &effectiveDate) const
{
    return QStringLiteral(" Insert into tblLibFines (FineAmount, FineInterval, FineDate, EffectiveDate, PhasedOut) Values (") + n(amount)
           + QLatin1Char(',') + n(qint64(interval)) + QStringLiteral(",Date(),") + JetDate(effectiveDate) + QStringLiteral(",false)");
}

QString clsTSQL::spFinesUpdate(int fineID, double amount, int interval, const QDate &effectiveDate) const
{
    return QStringLiteral(" Update tblLibFines Set FineAmount = ") + n(amount) + QStringLiteral(", FineInterval = ") + n(qint64(interval))
           + QStringLiteral(", EffectiveDate = ") + JetDate(effectiveDate) + QStringLiteral(" Where FineID = ") + n(qint64(fineID));
}

QString clsTSQL::spFinesPhaseOut(int fineID) const
{
    return QStringLiteral(" Update tblLibFines Set PhasedOut = true Where FineID = ") + n(qint64(fineID));
}

QString clsTSQL::spTransactionFinesList() const
{
    return TransactionFinesBase + QStringLiteral(" where tf.Paid = false order by t.MemberTypeID, t.MemberID");
}
QString clsTSQL::spTransactionFinesLearnersList() const { return transactionFinesList(Learners.typeID); }
QString clsTSQL::spTransactionFinesEducatorsList() const { return transactionFinesList(Educators.typeID); }
QString clsTSQL::spTransactionFinesParentsList() const { return transactionFinesList(Parents.typeID); }

QString clsTSQL::spTransactionFinesInsert(int transactionID, int fineID, double amount) const
{
    return QStringLiteral(" Insert into tblLibTransactionFines (TransactionID, FineID, Amount, Paid) Values (") + n(qint64(transactionID))
           + QLatin1Char(',') + n(qint64(fineID)) + QLatin1Char(',') + n(amount) + QStringLiteral(",false)");
}

QString clsTSQL::spTransactionFinesUpdates(int transactionID, bool paid) const
{
    return QStringLiteral(" Update tblLibTransactionFines Set Paid = ") + jetBool(paid) + QStringLiteral(" Where TransactionID = ")
           + n(qint64(transactionID));
}

QString clsTSQL::spSubjectsGetSubjects(const QString &prefix) const
{
    return SubjectColumns + QStringLiteral(" where SubjectDescription like '") + Safesql(prefix) + QStringLiteral("%'");
}

QString clsTSQL::spSubjectsGetMasterSubjects(const QString &prefix) const { return spSubjectsGetSubjects(prefix); }

QString clsTSQL::spMasterBooksList(const QString &prefix) const
{
    return QStringLiteral("Select Id, Title, ISBNCode from tblLibBook where phasedout = false and Title like '") + Safesql(prefix)
           + QStringLiteral("%' order by Title");
}

QString clsTSQL::spSubjectsGetListSubjects(const QString &prefix) const
{
    return SubjectColumns + QStringLiteral(" where phasedout = false and SubjectDescription like '") + Safesql(prefix)
           + QStringLiteral("%' order by SubjectDescription");
}

QString clsTSQL::spSubjectsGetSubject(int id) const { return SubjectColumns + QStringLiteral(" where Id = ") + n(qint64(id)); }

QString clsTSQL::spSubjectsGetMasterSubject(int id) const { return spSubjectsGetSubject(id); }

QString clsTSQL::spSubjectsLinkItem(int subjectID, int itemID) const
{
    return QStringLiteral(" Insert into tbllibItemSubjects (subjectid,itemid)") + QStringLiteral("Values(") + n(qint64(subjectID))
           + QLatin1Char(',') + n(qint64(itemID)) + QLatin1Char(')');
}

QString clsTSQL::spSubjectsDeleteItem(int itemID) const
{
    return QStringLiteral(" Delete * from tbllibItemSubjects ") + QStringLiteral("  Where itemid = ") + n(qint64(itemID));
}

QString clsTSQL::spSubjectsgetSubjectLink(int itemID) const
{
    return QStringLiteral("Select s.subjectid, c.SubjectDescription from tbllibItemSubjects as s inner join tblLibSubjectCodes as c "
                          "on s.subjectid = c.Id where s.itemid = ")
           + n(qint64(itemID));
}

QString clsTSQL::spKeywordsAddItem(int keyID, int itemID) const
{
    return QStringLiteral(" Insert into tbllibItemKeywords (KeyID, ItemID)") + QStringLiteral(" Values(") + n(qint64(keyID))
           + QLatin1Char(',') + n(qint64(itemID)) + QLatin1Char(')');
}

QString clsTSQL::spKeywordsRemoveItem(int itemID) const
{
    return QStringLiteral(" Delete * from tbllibItemKeywords ") + QStringLiteral(" Where ItemID = ") + n(qint64(itemID));
}

QString clsTSQL::spKeywordsGetKeywordLink(int itemID) const
{
    return QStringLiteral("Select k.KeyID, k.KeywordEng, k.KeywordAfr from tbllibItemKeywords as ik inner join tblLibKeywords as k "
                          "on ik.KeyID = k.KeyID where ik.ItemID = ")
           + n(qint64(itemID));
}

QString clsTSQL::spKeywordsSearchItems(const QString &condition) const
{
    return QStringLiteral("SELECT i.ItemID, i.AccessionID, i.Title, (a1.AuthorSurname + ', ' + a1.AuthorFirstName) AS Author1, "
                          "(a2.AuthorSurname + ', ' + a2.AuthorFirstName) AS Author2, i.ClassificationNo, i.ReferenceItem, i.Restricted, "
                          "i.LoanType, i.ShelfNumber, i.ISBN, i.Cost, i.DatePurchased "
                          "FROM ((tblLibItems AS i LEFT JOIN tblLibItemKeywords ON i.ItemID = tblLibItemKeywords.ItemID) "
                          "LEFT JOIN tblLibAuthors AS a1 ON a1.AuthorID = i.Author1) LEFT JOIN tblLibAuthors AS a2 ON a2.AuthorID = i.Author2 ")
           + condition
           + QStringLiteral(" GROUP BY i.ItemID, i.AccessionID, i.Title, a1.AuthorSurname, a1.AuthorFirstName, a2.AuthorSurname, a2.AuthorFirstName, "
                            "i.ClassificationNo, i.ReferenceItem, i.Restricted, i.LoanType, i.ShelfNumber, i.ISBN, i.Cost, i.DatePurchased");
}

QString clsTSQL::spKeywords(KeywordMode mode, const QString &keyIDOrText) const
{
    const QString base = QStringLiteral(" SELECT KeyID, KeywordEng, KeywordAfr FROM tblLibKeywords ");
    switch (mode) {
    case KeywordById:
        return base + QStringLiteral("WHERE KeyID = ") + keyIDOrText;
    case KeywordsContaining:
        return base + QStringLiteral("WHERE KeywordEng like '%") + keyIDOrText + QStringLiteral("%' OR KeywordAfr like '%") + keyIDOrText
               + QStringLiteral("%'");
    default:
        return base;
    }
}

QString clsTSQL::spKeywordList(const QString &prefix) const
{
    return QStringLiteral("SELECT KeyID, KeywordEng AS Keyword FROM tblLibKeywords WHERE KeywordEng Is Not Null AND KeywordEng <> '' "
                          "AND KeywordEng Like '")
           + prefix
           + QStringLiteral("%' UNION SELECT KeyID, KeywordAfr AS Keyword FROM tblLibKeywords WHERE KeywordAfr Is Not Null "
                            "AND KeywordAfr <> '' AND KeywordAfr Like '")
           + prefix + QStringLiteral("%'") + QStringLiteral(" Order By Keyword");
}

QString clsTSQL::spKeywordsExist(const QString &condition) const { return QStringLiteral(" Select KeyID from tblLibKeywords ") + condition; }

QString clsTSQL::spKeywordsLinked(int keyID) const
{
    return QStringLiteral("Select i.Title from tblLibItems as i inner join tblLibItemKeywords as ik on i.ItemID = ik.ItemID where ik.KeyID = ")
           + n(qint64(keyID));
}

QString clsTSQL::spKeywordsDelete(int keyID) const
{
    return QStringLiteral(" Delete * from tblLibKeywords ") + QStringLiteral(" Where KeyID = ") + n(qint64(keyID));
}

QString clsTSQL::spKeywordsUpdate(int keyID, const QString &english, const QString &afrikaans) const
{
    return QStringLiteral(" Update tblLibKeywords") + QStringLiteral(" Set KeywordEng = '") + english + QStringLiteral("'")
           + QStringLiteral(" , KeywordAfr = '") + afrikaans + QStringLiteral("'") + QStringLiteral(" Where KeyID = ") + n(qint64(keyID));
}

QString clsTSQL::spKeywordsInsert(const QString &english, const QString &afrikaans) const
{
    return QStringLiteral(" Insert into tblLibKeywords (KeywordEng,KeywordAfr)") + QStringLiteral(" Values('") + english
           + QStringLiteral("','") + afrikaans + QStringLiteral("')");
}

QString clsTSQL::spQSTransactions(int itemID, const QString &memberKind) const
{
    return QStringLiteral("SELECT tblLibTransactions.MemberType, tblLibTransactions.Memberid ,tblLibTransactions.ItemID,   "
                          "tblLibTransactions.Returned, tblLibTransactions.DueDate")
           + QStringLiteral(" FROM tblLibTransactions ") + QStringLiteral(" Where tblLibTransactions.itemid = ") + n(qint64(itemID))
           + QStringLiteral(" and tblLibTransactions.MemberType = '") + memberKind + QStringLiteral("' and returned = false");
}

QString clsTSQL::spQSOpenLoans(const QStringList &itemIDs) const
{
    return QStringLiteral("SELECT tblLibTransactions.MemberType, tblLibTransactions.Memberid, tblLibTransactions.ItemID, tblLibTransactions.DueDate"
                          " FROM tblLibTransactions Where returned = false and tblLibTransactions.itemid in (")
           + itemIDs.join(QLatin1Char(',')) + QStringLiteral(")");
}

QString clsTSQL::spQSItemsFind(const QString &searchKind, const QString &text) const
{
    QString part;
    if (searchKind == QLatin1String("acc")) {
        part = QStringLiteral(") WHERE (accessionid = '") + text + QStringLiteral("') ");
    } else if (searchKind == QLatin1String("auth")) {
        part = QStringLiteral(" LEFT JOIN tblLibAuthors ON (tblLibitems.Author2 = tblLibAuthors.AuthorID) or (tblLibitems.Author1 = tblLibAuthors.AuthorID))")
               + QStringLiteral(" WHERE (authorsurname LIKE '") + text + QStringLiteral("%' and tbllibauthors.phasedout = false) ");
    } else if (searchKind == QLatin1String("title")) {
        part = QStringLiteral(") WHERE (title LIKE '") + text + QStringLiteral("%')");
    } else if (searchKind == QLatin1String("keyw")) {
        part = QStringLiteral(" LEFT JOIN tblLibItemKeywords on (tblLibItems.ItemID = tblLibItemKeywords.ItemID)) ")
               + QStringLiteral(" LEFT JOIN tblLibKeywords on (tblLibItemKeywords.KeyID = tblLibKeywords.KeyID) ")
               + QStringLiteral(" WHERE ((tblLibKeywords.KeywordEng LIKE '") + text + QStringLiteral("%') OR (tblLibKeywords.KeywordAfr LIKE '")
               + text + QStringLiteral("%'))");
    }
    return QStringLiteral("SELECT tblLibitems.Title, tblLibitems.ItemID, tblLibitems.ShelfNumber, tblLibitems.AccessionID")
           + QStringLiteral(" FROM (tblLibitems ") + part + QStringLiteral("And (tblLibitems.phasedout = false) order by  Title,accessionID");
}

QString clsTSQL::spGetAID(const QString &columns, const QString &table) const
{
    return QStringLiteral("Select ") + columns + QStringLiteral(" from ") + table;
}

QString clsTSQL::spBarSpine(const QString &clause) const
{
    return QStringLiteral("Select i.AccessionID, i.Title, i.ISBN, i.ShelfNumber from tblLibItems as i ") + clause;
}
