#pragma once

class ScreenRegistry;

/// Registers the report screen with the main menu.
void registerReportScreens(ScreenRegistry &screens);
