#include "mCombo.h"
#include "frmCategories.h"
#include "ui_frmCategories.h"

#include "AppError.h"
#include "SqlText.h"
#include "TypedFields.h"
#include "ErrorReport.h"
#include "clsTSQL.h"
#include "modExtendedMsgBox.h"

#include <QEvent>
#include <QTreeWidget>

namespace {
const QString Location = QStringLiteral("frmCategories");
int idOf(const QTreeWidgetItem *node) { return node->data(0, Qt::UserRole).toString().mid(1).toInt(); }
} // namespace

frmCategories::frmCategories(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::frmCategories>())
{
    ui->setupUi(this);
    GuardTypedFields(this);
    LimitToColumn(ui->txtCategory, "tblLibCategories", "Category");
    LimitToColumn(ui->txtSubCategory, "tblLibSubCategories", "SubCategory");
    ui->txtCategory->installEventFilter(this);
    ui->txtSubCategory->installEventFilter(this);
    connect(ui->optAllCat, &QRadioButton::clicked, this, &frmCategories::LoadTree);
    connect(ui->optExpand, &QRadioButton::clicked, ui->tvwCategories, &QTreeWidget::expandAll);
    connect(ui->optCollapse, &QRadioButton::clicked, ui->tvwCategories, &QTreeWidget::collapseAll);
    connect(ui->cboCategory, &QComboBox::activated, this, &frmCategories::cboCategory_Click);
    connect(ui->tvwCategories, &QTreeWidget::itemClicked, this, &frmCategories::tvwCategories_NodeClick);
    connect(ui->cmdCatAdd, &QPushButton::clicked, this, &frmCategories::cmdCatAdd_Click);
    connect(ui->cmdCatUpdate, &QPushButton::clicked, this, &frmCategories::cmdCatUpdate_Click);
    connect(ui->cmdCatDelete, &QPushButton::clicked, this, &frmCategories::cmdCatDelete_Click);
    connect(ui->cmdDone, &QPushButton::clicked, this, &QDialog::accept);
    LoadTree();
}

frmCategories::~frmCategories() = default;

bool frmCategories::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn)
        level_ = watched == ui->txtCategory ? 1 : 2;
    return QDialog::eventFilter(watched, event);
}

void frmCategories::fillTree(const QString &categories, const QString &subCategories)
{
    QTreeWidget &tree = *ui->tvwCategories;
    tree.clear();
    data_.GetData(categories);
    QHash<int, QTreeWidgetItem *> byCategory;
    for (Recordset &rs = *data_.rst; !rs.atEnd(); rs.MoveNext()) {
        auto *node = new QTreeWidgetItem(&tree, {rs.field(QStringLiteral("Category")).toString()});
        const int id = rs.field(QStringLiteral("CategoryID")).toInt();
        node->setData(0, Qt::UserRole, QStringLiteral("c%1").arg(id));
        byCategory.insert(id, node);
    }
    data_.CloseCompact();
    data_.GetData(subCategories);
    for (Recordset &rs = *data_.rst; !rs.atEnd(); rs.MoveNext()) {
        QTreeWidgetItem *parent = byCategory.value(rs.field(QStringLiteral("CategoryID")).toInt());
        if (!parent)
            continue;
        auto *node = new QTreeWidgetItem(parent, {rs.field(QStringLiteral("SubCategory")).toString()});
        node->setData(0, Qt::UserRole, QStringLiteral("s%1").arg(rs.field(QStringLiteral("SubCategoryID")).toInt()));
    }
    data_.CloseCompact();
}

void frmCategories::LoadTree()
{
    Trap(Location, QStringLiteral("LoadTree"), [&] {
        fillTree(QStringLiteral("Select * from tblLibCategories where phasedout = false Order By Category"),
                 QStringLiteral("Select * from tblLibSubCategories where PhasedOut = false order by CategoryID, SubCategory"));
        Fillcombo(data_, ui->cboCategory, QStringLiteral("Select CategoryID,Category from tblLibCategories where PhasedOut = false"), 0, 1);
        data_.CloseCompact();
        ui->cboCategory->setCurrentIndex(-1);
    }, [&] { data_.CloseCompact(); });
}

void frmCategories::cboCategory_Click()
{
    Trap(Location, QStringLiteral("cboCategory_Click"), [&] {
        if (ui->cboCategory->currentIndex() < 0) {
            UserMessage(QStringLiteral("Please select a grade."));
            return;
        }
        const QString id = QString::number(ui->cboCategory->currentData().toInt());
        fillTree(QStringLiteral(" Select * from tblLibCategories") + QStringLiteral(" where CategoryID = ") + id + QStringLiteral(" And PhasedOut = false ")
                     + QStringLiteral(" Order By Category"),
                 QStringLiteral(" Select * from tblLibSubCategories") + QStringLiteral(" where CategoryID = ") + id
                     + QStringLiteral(" and PhasedOut = false order by CategoryID, SubCategory"));
    }, [&] { data_.CloseCompact(); });
}

void frmCategories::tvwCategories_NodeClick(QTreeWidgetItem *node)
{
    ui->txtCategory->clear();
    ui->txtSubCategory->clear();
    for (QRadioButton *option : {ui->optExpand, ui->optCollapse}) {
        option->setAutoExclusive(false);
        option->setChecked(false);
        option->setAutoExclusive(true);
    }
    level_ = 0;
    if (!node)
        return;
    if (QTreeWidgetItem *parent = node->parent()) {
        ui->txtCategory->setText(parent->text(0));
        ui->txtSubCategory->setText(node->text(0));
        categoryID_ = idOf(parent);
        subCategoryID_ = idOf(node);
        level_ = 2;
    } else {
        ui->txtCategory->setText(node->text(0));
        categoryID_ = idOf(node);
        level_ = 1;
    }
}

void frmCategories::afterChange()
{
    LoadTree();
    ui->txtCategory->clear();
    ui->txtSubCategory->clear();
}

void frmCategories::cmdCatAdd_Click()
{
    Trap(Location, QStringLiteral("cmdCatAdd_Click"), [&] {
        const clsTSQL sql;
        if (level_ < 2) {
            const QString name = ui->txtCategory->text().trimmed();
            if (name.isEmpty()) {
                UserMessage(QStringLiteral("Blanks are not allowed"));
                return;
            }
            // The check and the insert are one transaction: two desks cannot both add the name.
            const bool added = data_.RunTransaction([&] {
                if (data_.GetData(QStringLiteral("Select Category from tblLibCategories where Phasedout=false and Category = '") + Safesql(name) + QStringLiteral("'")) > 0)
                    return false;
                data_.ExecuteNonQuery(sql.spCategoriesInsert(name));
                return true;
            });
            data_.CloseCompact();
            if (!added) {
                UserMessage(QLatin1Char('\'') + name + QStringLiteral("' has already been added to the category list."));
                return;
            }
            UserMessage(QStringLiteral("Category added successfully"));
        } else {
            const QString name = ui->txtSubCategory->text().trimmed();
            if (categoryID_ == 0) {
                UserMessage(QStringLiteral("No Category selected."));
                return;
            }
            if (name.isEmpty()) {
                UserMessage(QStringLiteral("Blanks are not allowed."));
                return;
            }
            const bool added = data_.RunTransaction([&] {
                if (data_.GetData(QStringLiteral("Select SubCategory from tblLibSubCategories where Phasedout= False and subCategory = '") + Safesql(name)
                                  + QStringLiteral("' and categoryID = ") + QString::number(categoryID_))
                    > 0)
                    return false;
                data_.ExecuteNonQuery(sql.spSubCategoriesInsert(categoryID_, name));
                return true;
            });
            data_.CloseCompact();
            if (!added) {
                UserMessage(QLatin1Char('\'') + name + QStringLiteral("' has already been added to the Sub Category list of the selected Category."));
                return;
            }
            UserMessage(QStringLiteral("Sub-Category added successfully."));
        }
        afterChange();
    }, [&] { data_.CloseCompact(); });
}

void frmCategories::cmdCatUpdate_Click()
{
    Trap(Location, QStringLiteral("cmdCatUpdate_Click"), [&] {
        if (level_ == 0) {
            UserMessage(QStringLiteral("No item selected."));
            return;
        }
        const QString name = (level_ == 1 ? ui->txtCategory : ui->txtSubCategory)->text().trimmed();
        if (name.isEmpty()) {
            UserMessage(QStringLiteral("Blanks are not allowed."));
            return;
        }
        if (level_ == 1) {
            data_.ExecuteNonQuery(clsTSQL().spCategoriesUpdate(categoryID_, Safesql(name)));
            UserMessage(QStringLiteral("Category was updated successfully."));
        } else if (categoryID_ == 0) {
            UserMessage(QStringLiteral("No Category selected."));
            return;
        } else {
            data_.ExecuteNonQuery(clsTSQL().spSubCategoriesUpdate(subCategoryID_, Safesql(name)));
            UserMessage(QStringLiteral("Sub-Category was updated successfully."));
        }
        afterChange();
    });
}

bool frmCategories::linked(const QString &sql)
{
    const int rows = data_.GetData(sql);
    data_.CloseCompact();
    return rows > 0;
}

void frmCategories::cmdCatDelete_Click()
{
    Trap(Location, QStringLiteral("cmdCatDelete_Click"), [&] {
        const QString joins = QStringLiteral(" FROM ((tblLibItems AS i INNER JOIN tblLibCategories AS c ON i.CategoryID = c.CategoryID)")
                              + QStringLiteral(" INNER JOIN tblLibSubCategories AS sc ON i.SubCategoryID = sc.SubCategoryID)");
        if (level_ == 0) {
            UserMessage(QStringLiteral("No item selected."));
            return;
        }
        if (level_ == 1) {
            if (linked(QStringLiteral(" SELECT *") + joins + QStringLiteral(" WHERE (i.PhasedOut = 0) and (c.CategoryID = ") + QString::number(categoryID_) + QStringLiteral(")"))) {
                UserMessage(QStringLiteral("There are records already linked to this category and it cannot be deleted"));
                return;
            }
            if (!UserQuestion(QStringLiteral("Do you want to delete the selected Category Item and all its sub-categories?")))
                return;
            data_.RunTransaction([&] {
                data_.ExecuteNonQuery(clsTSQL().spCategoriesPhaseOut(categoryID_));
                data_.ExecuteNonQuery(clsTSQL().spSubCategoriesBulkPhaseOut(categoryID_));
                return true;
            });
        } else {
            if (linked(QStringLiteral(" SELECT ItemID") + joins + QStringLiteral(" WHERE (i.PhasedOut = 0) and (sc.SubCategoryID = ") + QString::number(subCategoryID_) + QStringLiteral(")"))) {
                UserMessage(QStringLiteral("There are records already linked to this sub-category and cannot be deleted"));
                return;
            }
            if (!UserQuestion(QStringLiteral("Do you want to delete the selected Sub-Category?")))
                return;
            data_.ExecuteNonQuery(clsTSQL().spSubCategoriesPhaseOut(subCategoryID_));
            UserMessage(QStringLiteral("Sub-Category removed successfully."));
        }
        level_ = 0;
        afterChange();
    });
}
