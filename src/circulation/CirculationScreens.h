#pragma once

class ScreenRegistry;

/// Registers the circulation screens with the main menu: the issue desk, the loan and fine
/// settings, reservations, reserved items and fine payment.
void registerCirculationScreens(ScreenRegistry &screens);
