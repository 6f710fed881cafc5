#pragma once

class ScreenRegistry;

/// Registers the catalogue screens built so far with the main menu: categories and the six reference lists.
void registerCatalogueScreens(ScreenRegistry &screens);
