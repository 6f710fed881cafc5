#include "CatalogueScreens.h"

#include "ScreenRegistry.h"
#include "frmCategories.h"
#include "frmReferenceList.h"

namespace {
template <typename Screen> void add(ScreenRegistry &screens, const char *name)
{
    screens.add(QLatin1String(name), [](QWidget *parent) { return new Screen(parent); });
}
} // namespace

void registerCatalogueScreens(ScreenRegistry &screens)
{
    add<frmCategories>(screens, "frmCategories");
    add<frmSeries>(screens, "frmSeries");
    add<frmPublisher>(screens, "frmPublisher");
    add<frmAuthor>(screens, "frmAuthor");
    add<frmLanguages>(screens, "frmLanguages");
    add<frmSubjectsList>(screens, "frmSubjectsList");
    add<frmKeywordList>(screens, "frmKeywordList");
}
