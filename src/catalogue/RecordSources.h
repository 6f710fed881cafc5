#pragma once

#include "Z3950Search.h"

#include <QList>

class clsDataObject;

/// The catalogues a book's record is looked up in, as the library database keeps them.
namespace RecordSources {
/// Those switched on, in the order entered.
QList<RecordSource> enabled(clsDataObject &data);
} // namespace RecordSources
