#pragma once

#include "OpacCatalogue.h"

#include <QString>

/// The web catalogue's pages as HTML: small, server-rendered, usable without JavaScript, on an old
/// phone and with a screen reader. Every value written into a page is escaped.
namespace OpacPages {
/// Text made safe to stand in HTML, in an element or an attribute.
QString escaped(const QString &text);
/// The search page, with the results of what was typed when there are any.
QString search(const QString &typed, const OpacCatalogue::Page &results, int page);
QString title(const OpacCatalogue::Details &details);
/// A page that says something went wrong, in plain words.
QString message(const QString &heading, const QString &text);
} // namespace OpacPages
