#pragma once

#include <QPrinter>

class QWidget;

/// The one way the system prints: a printer chosen in the print dialog (which
/// also offers printing to a PDF file). Under a message script the dialog is
/// skipped and the job writes the script's PDF file, or nothing.
class PrintJob {
public:
    PrintJob();
    QPrinter &printer() { return printer_; }
    /// False when the user cancelled (nothing is to be printed).
    bool choose(QWidget *parent);
    /// A length in twips (1/1440 inch) in the printer's device units.
    double twips(double value) const { return value * printer_.resolution() / 1440.0; }

private:
    QPrinter printer_;
};
