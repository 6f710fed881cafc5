#include "CatalogueScreens.h"

#include "ScreenRegistry.h"
#include "frmCategories.h"
#include "frmItemAddModify.h"
#include "frmItemList.h"
#include "frmLabelList.h"
#include "frmMarcImport.h"
#include "frmRecordSources.h"
#include "frmQuickFind.h"
#include "frmReferenceList.h"
#include "frmStocktake.h"

namespace {
template <typename Screen> void add(ScreenRegistry &screens, const char *name)
{
    screens.add(QLatin1String(name), [](QWidget *parent) { return new Screen(parent); });
}
} // namespace

void registerCatalogueScreens(ScreenRegistry &screens, SettingsStore &settings)
{
    screens.add(QStringLiteral("frmItemList"), [&screens](QWidget *parent) { return new frmItemList(screens, parent); });
    screens.addWithOptions(QStringLiteral("frmItemAddModify"), [&screens](QWidget *parent, const ScreenOptions &options) {
        return new frmItemAddModify(screens, options, parent);
    });
    screens.add(QStringLiteral("frmLabelList"), [&settings](QWidget *parent) { return new frmLabelList(settings, parent); });
    add<frmCategories>(screens, "frmCategories");
    add<frmStocktake>(screens, "frmStocktake");
    add<frmMarcImport>(screens, "frmMarcImport");
    add<frmRecordSources>(screens, "frmRecordSources");
    add<frmQuickFind>(screens, "frmQuickFind");
    add<frmSeries>(screens, "frmSeries");
    add<frmPublisher>(screens, "frmPublisher");
    add<frmAuthor>(screens, "frmAuthor");
    add<frmLanguages>(screens, "frmLanguages");
    add<frmSubjectsList>(screens, "frmSubjectsList");
    add<frmKeywordList>(screens, "frmKeywordList");
}
