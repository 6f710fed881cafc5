#pragma once

#include <QMap>
#include <QSize>
#include <QString>
#include <QStringList>

#include <functional>

class QDialog;
class QWidget;

/// What the main menu tells a screen as it opens it.
struct ScreenOptions {
    bool holidayPeriod = false; // the issue desk starts on long-loan rules
    /// The item editor: 0 a new title, 1 more copies of itemID, 2 editing the copy itemID.
    int itemEditMode = 0;
    int itemID = 0;
};

/// Keeps a screen within the room the desktop leaves it (the available screen area when room is
/// empty): a screen larger than that opens at that size, and what does not fit scrolls.
void FitOnScreen(QDialog *screen, QSize room = QSize());

/// The screens the main menu can open, by name (frmIssueSystem, frmItemList ...).
/// Each subsystem registers its screens; a screen not in this version is
/// announced to the user rather than pretended.
class ScreenRegistry {
public:
    using Factory = std::function<QDialog *(QWidget *parent)>;
    using OptionsFactory = std::function<QDialog *(QWidget *parent, const ScreenOptions &options)>;

    void add(const QString &name, Factory factory)
    {
        factories_.insert(name, [factory = std::move(factory)](QWidget *parent, const ScreenOptions &) { return factory(parent); });
    }
    /// A screen that takes the menu's options.
    void addWithOptions(const QString &name, OptionsFactory factory) { factories_.insert(name, std::move(factory)); }
    bool has(const QString &name) const { return factories_.contains(name); }
    /// Every registered screen name, in name order.
    QStringList names() const { return factories_.keys(); }
    /// A new instance of a registered screen (null for an unknown name); the caller shows it.
    QDialog *make(const QString &name, QWidget *parent, const ScreenOptions &options = {}) const
    {
        const auto it = factories_.constFind(name);
        return it == factories_.constEnd() ? nullptr : (*it)(parent, options);
    }
    /// Shows the screen modal and returns when it is closed.
    void open(const QString &name, const QString &caption, QWidget *parent, const ScreenOptions &options = {}) const;

private:
    QMap<QString, OptionsFactory> factories_;
};
