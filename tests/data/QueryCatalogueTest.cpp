#include "AppError.h"
#include "Clock.h"
#include "DbConnection.h"
#include "Recordset.h"
#include "TestDatabases.h"
#include "clsDataObject.h"
#include "clsTSQL.h"

TEST(QueryCatalogueText, QuotesAreDoubledOnlyWhereTheMethodDoesIt)
{
    const clsTSQL sql;
    EXPECT_EQ(sql.spCategoriesInsert("O'Hara"), " Insert into tblLibCategories(Category) Values ('O''Hara')");
    EXPECT_EQ(sql.spCategoriesUpdate(4, "O'Hara"), " Update tblLibCategories Set Category = 'O'Hara' Where CategoryID = 4");
    EXPECT_EQ(sql.spSubCategoriesInsert(2, "Kid's"), " Insert into tblLibSubCategories(CategoryID,SubCategory) Values (2,'Kid''s')");
    EXPECT_EQ(sql.spItemsGetEntryNo("Children's"), "select count(*) from tblLibItems where tblLibItems.MainSubject Like 'Children''s'");
    EXPECT_EQ(sql.spKeywordsInsert("it's", "dis"), " Insert into tblLibKeywords (KeywordEng,KeywordAfr) Values('it's','dis')");
}

TEST(QueryCatalogueText, QuotedStatementsAreExact)
{
    const clsTSQL sql;
    EXPECT_EQ(sql.spCategoriesPhaseOut(3), " Update tblLibCategories Set PhasedOut = true    ,PhasedOutDate = Date() Where CategoryID = 3");
    EXPECT_EQ(sql.spSubCategoriesBulkPhaseOut(3), " Update tblLibSubCategories Set PhasedOut = true    ,PhasedOutDate = Date() Where CategoryID = 3");
    EXPECT_EQ(sql.spCategoriesSearch("ic"), "Select CategoryID,Category from tblLibCategories where PhasedOut = false and Category Like '%ic%' order by Category");
    EXPECT_EQ(sql.spSchoolGradesList(), "Select id,name from schoolgrades where schoolgrade ='Yes' and id < 14");
    EXPECT_EQ(sql.spSchoolGradesListSpesific("2026"),
              "Select SG.ID, SG.Name from SchoolGrades as SG Inner Join Learner_Info as LI ON SG.ID = LI.Grade Where SG.SchoolGrade = 'Yes' "
              "AND LI.Status = 'C' And year(thedate)<= '2026' Group By SG.ID,SG.Name Order By SG.ID");
    EXPECT_EQ(sql.spItemsUpdateRole(9, true, "S"), " update tblLibItems set Restricted = True   ,LoanType = 'S' where ItemID = 9");
    EXPECT_EQ(sql.spSubjectsLinkItem(4, 9), " Insert into tbllibItemSubjects (subjectid,itemid)Values(4,9)");
    EXPECT_EQ(sql.spSubjectsDeleteItem(9), " Delete * from tbllibItemSubjects   Where itemid = 9");
    EXPECT_EQ(sql.spKeywordsAddItem(4, 9), " Insert into tbllibItemKeywords (KeyID, ItemID) Values(4,9)");
    EXPECT_EQ(sql.spKeywords(clsTSQL::KeywordById, "5"), " SELECT KeyID, KeywordEng, KeywordAfr FROM tblLibKeywords WHERE KeyID = 5");
    EXPECT_EQ(sql.spKeywords(clsTSQL::KeywordsContaining, "ho"),
              " SELECT KeyID, KeywordEng, KeywordAfr FROM tblLibKeywords WHERE KeywordEng like '%ho%' OR KeywordAfr like '%ho%'");
    EXPECT_EQ(sql.spKeywords(clsTSQL::KeywordsAll), " SELECT KeyID, KeywordEng, KeywordAfr FROM tblLibKeywords ");
    EXPECT_EQ(sql.spCatalogue("A1"), " SELECT *  FROM tblLibItems  where tblLibItems.AccessionID = 'A1'");
    EXPECT_EQ(sql.spGetAID("ItemID", "tblLibItems Where AccessionID = 'A1'"), "Select ItemID from tblLibItems Where AccessionID = 'A1'");
    EXPECT_EQ(sql.spBarSpine("where i.ItemID = 1"), "Select i.AccessionID, i.Title, i.ISBN, i.ShelfNumber from tblLibItems as i where i.ItemID = 1");
    EXPECT_EQ(sql.spQSTransactions(7, "L"),
              "SELECT tblLibTransactions.MemberType, tblLibTransactions.Memberid ,tblLibTransactions.ItemID,   tblLibTransactions.Returned, "
              "tblLibTransactions.DueDate FROM tblLibTransactions  Where tblLibTransactions.itemid = 7 and tblLibTransactions.MemberType = 'L' and returned = false");
    EXPECT_EQ(sql.spQSItemsFind("acc", "A1"),
              "SELECT tblLibitems.Title, tblLibitems.ItemID, tblLibitems.ShelfNumber, tblLibitems.AccessionID FROM (tblLibitems ) WHERE (accessionid = 'A1') "
              "And (tblLibitems.phasedout = false) order by  Title,accessionID");
    EXPECT_EQ(sql.spTransactionGetItemRecord(5),
              " select t.TransactionID, t.MemberTypeID, t.MemberID, t.ItemID, i.Title, t.IssueDate, t.ReturnDate, t.Returned, t.ActualReturnedDate, t.Fine"
              " from tblLibTransactions t inner join tblLibItems i on i.ItemID = t.ItemID where t.Returned = false and t.ItemID = 5");
    EXPECT_EQ(sql.spReservedGetItemRecord(5),
              " select ReserveID, MemberTypeID, MemberID, ItemID, ReserveDate, CollectionDate, FromDate, ToDate, Collected, Canceled"
              " from tblLibReserves where ToDate > date() and Collected = false and Canceled = false and ItemID = 5");
    EXPECT_TRUE(sql.spTransactionUpdate("A1", QDate(2026, 3, 4)).endsWith(
        "where transactionID in(Select Max (transactionid) as LastTransaction from  tbllibTransactions where AccessionID = 'A1 ')"));
    EXPECT_TRUE(sql.spTransactionUpdate("A1", QDate(2026, 3, 4)).contains("#04/03/2026#"));
    EXPECT_TRUE(sql.spFinesCurrent().contains(" where  effectiveDate between dateadd('yyyy',-2,date()) and date()"));
    EXPECT_TRUE(sql.spFinesCurrent().startsWith("Select top 1 "));
    EXPECT_EQ(sql.getMemberNameES("S", 4), "Select sName & ', ' & fName as mName from StaffMembers Where StaffID = 4");
    EXPECT_EQ(sql.getMemberNameES("E", 4), "Select sName & ', ' & fName as mName from Educators Where EdID = 4");
}

class QueryCatalogueRuns : public DatabaseTest {
protected:
    void SetUp() override
    {
        DatabaseTest::SetUp();
        Clock::setFixed(QDateTime(QDate(2026, 11, 23), QTime(9, 0)));
        library(sql.spCategoriesInsert("Fiction"));
        library(sql.spCategoriesInsert("Non-fiction"));
        library(sql.spSubCategoriesInsert(1, "Novels"));
        library(sql.spSubCategoriesInsert(2, "Science"));
        library("Insert into tblLibAuthors(AuthorSurname, AuthorFirstName) values ('Smit', 'Jan')");
        library("Insert into tblLibItemLanguages(ItemLanguage) values ('English')");
        ItemDetails book;
        book.accessionID = "F001";
        book.categoryID = 1;
        book.subCategoryID = 1;
        book.title = "Kringe in 'n Bos";
        book.shelfNumber = "F SMI";
        book.author1 = 1;
        book.itemLanguageID = 1;
        book.yearPublished = 1984;
        book.cost = 129.95;
        book.datePurchased = QDate(2026, 2, 1);
        book.classificationNo = "839.36";
        library(sql.spItemsInsert(book));
        book.accessionID = "F002";
        library(sql.spItemsInsert(book));
        book.accessionID = "S001";
        book.categoryID = 2;
        book.subCategoryID = 2;
        book.title = "Atoms";
        book.classificationNo = "";
        library(sql.spItemsInsert(book));
        central("Insert into SchoolGrades(ID, Name, schoolgrade) values (8, 'Grade 8', 'Yes')");
        central("Insert into SchoolGrades(ID, Name, schoolgrade) values (14, 'Staff', 'Yes')");
        central("Insert into SchoolGrades(ID, Name, schoolgrade) values (15, 'Pre-school', 'No')");
        central("Insert into Classes(ClassName, Grade) values ('8A', 8)");
        central("Insert into Learner_Info(AccessionNo, SName, FName, Grade, Class, Status, IDNo, thedate, Photoname) values "
                "('L1', 'Botha', 'Anna', 8, 1, 'C', '1001', #2020-01-10#, 'anna.png')");
        central("Insert into Educators(SName, FName, IDNumber, Status) values ('Naidoo', 'Ravi', '7001', 'C')");
    }
    clsTSQL sql;
};

TEST_F(QueryCatalogueRuns, EveryLibraryStatementRunsOnTheSchema)
{
    library(" Insert into tblLibKeywords (KeywordEng,KeywordAfr) Values('dog','hond')");
    const QStringList statements = {
        sql.spCategoriesList(), sql.spCategoriesGetRecord(1), sql.spCategoriesSearch("ic"), sql.spCategoriesUpdate(2, "Nonfiction"),
        sql.spSubCategoriesList(), sql.spSubCategoriesGetRecord(1), sql.spSubCategoriesGetRecordByCategory("Fiction"),
        sql.spSubCategoriesSearch(1, "ov"), sql.spSubCategoriesUpdate(1, "Novel"), sql.spSubjectsInsert("Art", "700"),
        sql.spSubjectsList(), sql.spSubjectsLists("A%"), sql.spMasterBookList(), sql.spBooksList(), sql.spSubjectsGetRecord(1),
        sql.spSubjectsSearch("r"), sql.spSubjectsSearchs("A"), sql.spSubjectsUpdate(1, "Art's", "700"), sql.spItemsList(),
        sql.spItemsGetLastID(), sql.spItemsGetEntryNo("Art"), sql.spItemsGetRecord(1), sql.spMasterInsert(MasterCatalogueEntry{}),
        sql.spItemsSetAccessionNumber("X", "No such subject"), sql.spItemsUpdateRole(1, false, "N"), sql.spItemLastAccession(),
        sql.spCatalogue("F001"), sql.spSubjectsGetSubjects("A"), sql.spSubjectsGetMasterSubjects("A"), sql.spMasterBooksList("A"),
        sql.spSubjectsGetListSubjects("A"), sql.spSubjectsGetSubject(1), sql.spSubjectsGetMasterSubject(1), sql.spSubjectsLinkItem(1, 1),
        sql.spSubjectsgetSubjectLink(1), sql.spSubjectsDeleteItem(1), sql.spKeywordsAddItem(1, 1), sql.spKeywordsGetKeywordLink(1),
        sql.spKeywordsSearchItems(" Where (tblLibItemKeywords.KeyID = 1) AND (i.Phasedout = False)"), sql.spKeywords(clsTSQL::KeywordsAll),
        sql.spKeywordList("d"), sql.spKeywordsExist("Where KeywordEng = 'dog'"), sql.spKeywordsLinked(1), sql.spKeywordsRemoveItem(1),
        sql.spKeywordsUpdate(1, "hound", "hond"), sql.spKeywordsDelete(1), sql.spQSTransactions(1, "L"),
        sql.spQSItemsFind("acc", "F001"), sql.spQSItemsFind("auth", "Sm"), sql.spQSItemsFind("title", "At"), sql.spQSItemsFind("keyw", "d"),
        sql.spGetAID("ItemID", "tblLibItems Where AccessionID = 'F001'"), sql.spBarSpine("where i.PhasedOut = false"),
        sql.spItemsPhasedOut(3, QDate(2026, 11, 1), "Lost"), sql.spSubCategoriesPhaseOut(2), sql.spCategoriesPhaseOut(2),
        sql.spSubCategoriesBulkPhaseOut(2), sql.spSubjectsPhaseOut(1)};
    clsDataObject d;
    for (const QString &statement : statements) {
        try {
            d.GetData(statement);
            d.CloseCompact();
        } catch (const AppError &e) {
            ADD_FAILURE() << statement.toStdString() << "\n -> " << e.description().toStdString();
        }
    }
}

TEST_F(QueryCatalogueRuns, CentralStatementsRunAndKeepTheirLimits)
{
    EXPECT_EQ(centralRows(sql.spSchoolGradesList()), QStringList{"8|Grade 8"}); // id 14 and above never listed
    EXPECT_EQ(centralRows(sql.spSchoolGradesListSpesific("2026")), QStringList{"8|Grade 8"});
    EXPECT_EQ(centralRows(sql.spSchoolGradesListSpesific("2019")), QStringList{}); // admitted in 2020
    EXPECT_EQ(centralRows(sql.spLearnersList("2019")), QStringList{});
    EXPECT_EQ(centralRows(sql.spClassesList()), QStringList{"1|8A"});
    EXPECT_EQ(centralRows(sql.spClassesListSpesific("All", "2026")), QStringList{"1|8A"});
    EXPECT_EQ(centralRows(sql.spClassesListSpesific("Grade 9", "2026")), QStringList{});
    EXPECT_EQ(centralRows(sql.spLearnersList("2026")), QStringList{"1|L1|Botha|Anna|Grade 8|8A"});
    EXPECT_EQ(centralRows(sql.spLearnersListSpesific("Grade 8", "8A", "2026")), QStringList{"1|L1|Botha|Anna|Grade 8|8A"});
    EXPECT_EQ(centralRows(sql.spLearnersListSpesific("All", "8B", "2026")), QStringList{});
    EXPECT_EQ(centralRows(sql.spLearnerPhoto(1)), QStringList{"anna.png"});
    EXPECT_EQ(centralRows(sql.spMembers("L")), QStringList{"1|Botha_Anna_1001"});
    EXPECT_EQ(centralRows(sql.spMembers("E")), QStringList{"1|Naidoo_Ravi_7001"});
    EXPECT_EQ(centralRows(sql.getMemberNameES("E", 1)), QStringList{"Naidoo, Ravi"});
}

TEST_F(QueryCatalogueRuns, ItemStatementsReturnTheirColumnsAndRows)
{
    EXPECT_EQ(libraryRows("select ItemID, AccessionID, ClassificationNo, Title, DateAdded, Restricted, LoanType, Cost from tblLibItems order by ItemID"),
              (QStringList{"1|F001|839.36|Kringe in 'n Bos|2026-11-23|False|N|129.95", "2|F002|839.36|Kringe in 'n Bos|2026-11-23|False|N|129.95",
                           "3|S001||Atoms|2026-11-23|False|N|129.95"}));
    clsDataObject d;
    d.GetData(sql.spItemsGetRecord(3));
    EXPECT_EQ(d.rst->field("strAuthor1").toString(), "Smit, Jan");
    EXPECT_TRUE(d.rst->field("strAuthor2").isNull());
    EXPECT_TRUE(d.rst->field("strPublisher").isNull());
    EXPECT_EQ(d.rst->field("Category").toString(), "Non-fiction");
    EXPECT_EQ(d.rst->field("ItemLanguage").toString(), "English");
    d.CloseCompact();

    // Items on the shelf: not on loan, not reserved, not phased out.
    library("Insert into tblLibTransactions(accessionId,MemberType,MemberId,ItemID,Issuedate,DueDate)VALUES('F001','L',1,1,#2026-11-01#,#2026-11-15#)");
    EXPECT_EQ(libraryRows(sql.spItemsList()).size(), 2);
    library("insert into tblLibReserves(MemberType,MemberID,ItemID,ReserveDate) values ('L',1,2,#2026-11-20#)");
    EXPECT_EQ(libraryRows(sql.spItemsList()), QStringList{"3|S001|Atoms|2|Non-fiction|2|Science|F SMI|English||N"});
    library(sql.spItemsPhasedOut(3, QDate(2026, 11, 1), "Weed"));
    EXPECT_TRUE(libraryRows(sql.spItemsList()).isEmpty());
    EXPECT_EQ(libraryRows("select PhasedOut, PhasedOutDate, PhasedOutReason from tblLibItems where ItemID = 3"), QStringList{"True|2026-11-01|Weed"});

    // Saving an item reinstates it.
    ItemDetails edited;
    edited.accessionID = "S001";
    edited.title = "Atoms & Molecules";
    edited.shelfNumber = "539";
    edited.categoryID = 2;
    edited.subCategoryID = 2;
    library(sql.spItemsUpdate(3, edited));
    EXPECT_EQ(libraryRows("select Title, PhasedOut, PhasedOutDate, PhasedOutReason from tblLibItems where ItemID = 3"),
              QStringList{"Atoms & Molecules|False||"});
    EXPECT_EQ(d.GetAuto(sql.spItemsGetLastID()), 3);
    EXPECT_EQ(libraryRows(sql.spItemLastAccession()), QStringList{"S001"});
}

TEST_F(QueryCatalogueRuns, KeywordAndSubjectLookUps)
{
    library(sql.spKeywordsInsert("dog", "hond"));
    library(sql.spKeywordsInsert("Cat", ""));
    library(sql.spKeywordsInsert("", "dier"));
    EXPECT_EQ(libraryRows(sql.spKeywordList("")), (QStringList{"2|Cat", "3|dier", "1|dog", "1|hond"}));
    EXPECT_EQ(libraryRows(sql.spKeywordList("d")), (QStringList{"3|dier", "1|dog"}));
    library(sql.spKeywordsAddItem(1, 2));
    EXPECT_EQ(libraryRows(sql.spKeywordsLinked(1)), QStringList{"Kringe in 'n Bos"});
    EXPECT_EQ(libraryRows(sql.spKeywordsSearchItems(" Where (tblLibItemKeywords.KeyID = 1 Or tblLibItemKeywords.KeyID = 2) AND (i.Phasedout = False)")),
              QStringList{"2|F002|Kringe in 'n Bos|Smit, Jan||839.36|False|False|N|F SMI||129.95|2026-02-01"});
    EXPECT_EQ(libraryRows(sql.spQSItemsFind("keyw", "HO")), QStringList{"Kringe in 'n Bos|2|F SMI|F002"});
    EXPECT_EQ(libraryRows(sql.spQSItemsFind("auth", "smi")).size(), 3);

    library(sql.spSubjectsInsert("Afrikaans poetry", "839.36"));
    library(sql.spSubjectsInsert("Atomic physics", "539.7"));
    EXPECT_EQ(libraryRows(sql.spSubjectsGetListSubjects("A")), (QStringList{"1|Afrikaans poetry|839.36", "2|Atomic physics|539.7"}));
    library(sql.spSubjectsPhaseOut(1));
    EXPECT_EQ(libraryRows(sql.spSubjectsList()), QStringList{"2|Atomic physics|539.7"});
    library(sql.spSubjectsLinkItem(2, 3));
    EXPECT_EQ(libraryRows(sql.spSubjectsgetSubjectLink(3)), QStringList{"2|Atomic physics"});
}

TEST_F(QueryCatalogueRuns, AnUnknownQuickFindKindIsRejectedByTheEngine)
{
    const QString statement = sql.spQSItemsFind("isbn", "123");
    EXPECT_FALSE(statement.contains("WHERE"));
    clsDataObject d;
    EXPECT_THROW(d.GetData(statement), AppError);
}
