#pragma once

class ScreenRegistry;
class SettingsStore;

/// Registers the catalogue screens built so far with the main menu: the stock list, categories,
/// labels and the six reference lists. The label screen keeps its label stock in settings; the
/// stock list opens the item editor and the searches through the registry.
void registerCatalogueScreens(ScreenRegistry &screens, SettingsStore &settings);
