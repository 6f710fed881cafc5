#pragma once

#include <QDialog>

/// The about box: version, the Qt and SQLite versions, both database paths,
/// and a button to the system information view.
class frmAbout : public QDialog {
    Q_OBJECT
public:
    explicit frmAbout(QWidget *parent = nullptr);
};

/// What the program knows of the machine and its databases, for the school's IT person.
class SystemInfoDialog : public QDialog {
    Q_OBJECT
public:
    explicit SystemInfoDialog(QWidget *parent = nullptr);
    /// The report as plain text (also shown in the view).
    static QString report();
};
