#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>

class QDialog;
class QWidget;

/// The screens the main menu can open, by name (frmIssueSystem, frmItemList ...).
/// Each subsystem registers its screens; a screen not in this version is
/// announced to the user rather than pretended.
class ScreenRegistry {
public:
    using Factory = std::function<QDialog *(QWidget *parent)>;

    void add(const QString &name, Factory factory) { factories_.insert(name, std::move(factory)); }
    bool has(const QString &name) const { return factories_.contains(name); }
    /// Every registered screen name, in name order.
    QStringList names() const { return factories_.keys(); }
    /// A new instance of a registered screen (null for an unknown name); the caller shows it.
    QDialog *make(const QString &name, QWidget *parent) const
    {
        const auto it = factories_.constFind(name);
        return it == factories_.constEnd() ? nullptr : (*it)(parent);
    }
    /// Shows the screen modal and returns when it is closed.
    void open(const QString &name, const QString &caption, QWidget *parent) const;

private:
    QMap<QString, Factory> factories_;
};
