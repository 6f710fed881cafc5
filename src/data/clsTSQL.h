#pragma once

#include <QDate>
#include <QString>

/// The detail columns of one catalogue copy, as the item editor validated them.
struct ItemDetails {
    QString accessionID;
    int categoryID = 0;
    int subCategoryID = 0;
    QString classificationNo; // written bare when numeric (the column converts it), else as text
    QString mainSubject;
    QString title;
    QString byLine;
    int author1 = 0;
    int author2 = 0;
    int author3 = 0;
    int publisher = 0;
    int yearPublished = 0;
    int itemLanguageID = 0;
    QString isbn;
    QString barcode;
    int seriesID = 0;
    double cost = 0;
    bool referenceItem = false;
    QDate datePurchased;
    QString shelfNumber;
    int edition = 0;
};

/// One row of the master list of titles.
struct MasterCatalogueEntry {
    int categoryID = 0;
    int subCategoryID = 0;
    QString title;
    QString author;
    QString contactDetails;
    QString publisher;
    int yearPublished = 0;
    int itemLanguageID = 0;
    QString isbn;
    QString barcode;
    double retailPrice = 0;
    QString grade;
    QString mainSubject;
};

/// The catalogue of named statements: each method returns a complete Jet
/// statement as text and touches no database. Text arguments are inserted as
/// given except in the methods that double quotes themselves (the inserts,
/// the subject look-ups and the item writes).
class clsTSQL {
public:
    // Categories and sub-categories.
    QString spCategoriesList() const;
    QString spCategoriesGetRecord(int categoryID) const;
    QString spCategoriesSearch(const QString &text) const;
    QString spCategoriesInsert(const QString &name) const;
    QString spCategoriesUpdate(int categoryID, const QString &name) const;
    QString spCategoriesPhaseOut(int categoryID) const;
    QString spSubCategoriesBulkPhaseOut(int categoryID) const;
    QString spSubCategoriesList() const;
    QString spSubCategoriesGetRecord(int subCategoryID) const;
    QString spSubCategoriesGetRecordByCategory(const QString &categoryName) const;
    QString spSubCategoriesSearch(int categoryID, const QString &text) const;
    QString spSubCategoriesInsert(int categoryID, const QString &name) const;
    QString spSubCategoriesUpdate(int subCategoryID, const QString &name) const;
    QString spSubCategoriesPhaseOut(int subCategoryID) const;
    // Subjects and books.
    QString spSubjectsList() const;
    QString spSubjectsLists(const QString &pattern) const;
    QString spMasterBookList() const;
    QString spBooksList() const;
    QString spSubjectsGetRecord(int id) const;
    QString spSubjectsSearch(const QString &text) const;
    QString spSubjectsInsert(const QString &description, const QString &classificationNo) const;
    QString spSubjectsSearchs(const QString &prefix) const;
    QString spSubjectsUpdate(int id, const QString &description, const QString &classificationNo) const;
    QString spSubjectsPhaseOut(int id) const;
    // Grades and classes (central database).
    QString spSchoolGradesList() const;
    QString spSchoolGradesListSpesific(const QString &year) const;
    QString spClassesList() const;
    QString spClassesListSpesific(const QString &gradeName, const QString &year) const;
    // Items.
    QString spItemsList() const;
    QString spItemsGetLastID() const;
    QString spItemsGetEntryNo(const QString &subject) const;
    QString spItemsGetRecord(int itemID) const;
    QString spItemsInsert(const ItemDetails &item) const;
    QString spMasterInsert(const MasterCatalogueEntry &entry) const;
    QString spItemsSetAccessionNumber(const QString &accessionID, const QString &mainSubject) const;
    QString spItemsUpdate(int itemID, const ItemDetails &item) const;
    QString spItemsUpdateRole(int itemID, bool restricted, const QString &loanType) const;
    QString spItemsPhasedOut(int itemID, const QDate &date, const QString &reason) const;
    QString spItemLastAccession() const;
    QString spLearnerPhoto(int learnerID) const;
    QString spCatalogue(const QString &accessionID) const;
    // Members (central database).
    QString spMemberTypesList() const;
    QString spMembers(const QString &memberKind) const;
    QString spLearnersList(const QString &year) const;
    QString getMemberNameES(const QString &memberKind, int memberID) const;
    QString spLearnersListSpesific(const QString &gradeName, const QString &className, const QString &year) const;
    // The member-type-keyed circulation layout.
    QString spTransactionLearnersList() const;
    QString spTransactionEducatorsList() const;
    QString spTransactionParentsList() const;
    QString spTransactionGetRecord(int transactionID) const;
    QString spTransactionGetItemRecord(int itemID) const;
    QString spTransactionLearnersSearch(const QString &surname) const;
    QString spTransactionEducatorsSearch(const QString &surname) const;
    QString spTransactionParentsSearch(const QString &surname) const;
    QString spTransactionInsert(int memberTypeID, int memberID, int itemID, const QDate &issueDate, const QDate &returnDate) const;
    QString spTransactionUpdate(const QString &accessionID, const QDate &returnedDate) const;
    QString spTransactionReturn(int transactionID, const QDate &returnedDate, double fine) const;
    QString spReservedList() const;
    QString spReservedGetRecord(int reserveID) const;
    QString spReservedGetItemRecord(int itemID) const;
    QString spReservedSearch(const QString &title) const;
    QString spReservedLearnersSearch(const QString &surname) const;
    QString spReservedEducatorsSearch(const QString &surname) const;
    QString spReservedParentsSearch(const QString &surname) const;
    QString spReservedInsert(int memberTypeID, int memberID, int itemID, const QDate &fromDate, const QDate &toDate) const;
    QString spReservedUpdate(int reserveID, bool collected, bool canceled) const;
    QString spFinesList() const;
    QString spFinesCurrent() const;
    QString spFinesGetRecord(int fineID) const;
    QString spFinesSearch(const QDate &effectiveDate) const;
    QString spFinesInsert(double amount, int interval, const QDate &effectiveDate) const;
    QString spFinesUpdate(int fineID, double amount, int interval, const QDate &effectiveDate) const;
    QString spFinesPhaseOut(int fineID) const;
    QString spTransactionFinesList() const;
    QString spTransactionFinesLearnersList() const;
    QString spTransactionFinesEducatorsList() const;
    QString spTransactionFinesParentsList() const;
    QString spTransactionFinesInsert(int transactionID, int fineID, double amount) const;
    QString spTransactionFinesUpdates(int transactionID, bool paid) const;
    // Subject links and look-ups.
    QString spSubjectsGetSubjects(const QString &prefix) const;
    QString spSubjectsGetMasterSubjects(const QString &prefix) const;
    QString spMasterBooksList(const QString &prefix) const;
    QString spSubjectsGetListSubjects(const QString &prefix) const;
    QString spSubjectsGetSubject(int id) const;
    QString spSubjectsGetMasterSubject(int id) const;
    QString spSubjectsLinkItem(int subjectID, int itemID) const;
    QString spSubjectsDeleteItem(int itemID) const;
    QString spSubjectsgetSubjectLink(int itemID) const;
    // Keywords.
    QString spKeywordsAddItem(int keyID, int itemID) const;
    QString spKeywordsRemoveItem(int itemID) const;
    QString spKeywordsGetKeywordLink(int itemID) const;
    QString spKeywordsSearchItems(const QString &condition) const;
    enum KeywordMode { KeywordsAll = 0, KeywordById = 1, KeywordsContaining = 2 };
    QString spKeywords(KeywordMode mode, const QString &keyIDOrText = QString()) const;
    QString spKeywordList(const QString &prefix) const;
    QString spKeywordsExist(const QString &condition) const;
    QString spKeywordsLinked(int keyID) const;
    QString spKeywordsDelete(int keyID) const;
    QString spKeywordsUpdate(int keyID, const QString &english, const QString &afrikaans) const;
    QString spKeywordsInsert(const QString &english, const QString &afrikaans) const;
    // Quick search, generic selects, labels.
    QString spQSTransactions(int itemID, const QString &memberKind) const;
    /// The open loans of many items at once (quick find of a long list): member kind, member, item, due date.
    QString spQSOpenLoans(const QStringList &itemIDs) const;
    QString spQSItemsFind(const QString &searchKind, const QString &text) const;
    QString spGetAID(const QString &columns, const QString &table) const;
    QString spBarSpine(const QString &clause) const;
};
