#pragma once

class ScreenRegistry;
class SettingsStore;

/// Registers the catalogue screens built so far with the main menu: categories, labels and the six
/// reference lists. The label screen keeps its label stock in settings.
void registerCatalogueScreens(ScreenRegistry &screens, SettingsStore &settings);
