#pragma once

/// The stock list, quick find and the item editor's save on the large school (library path set, working copy).
void benchItemScreens();
