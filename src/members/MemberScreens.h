#pragma once

class ScreenRegistry;

/// Registers the members screens with the main menu: the library users.
void registerMemberScreens(ScreenRegistry &screens);
