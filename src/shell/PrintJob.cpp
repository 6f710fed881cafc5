#include "PrintJob.h"

#include "MessageScript.h"

#include <QPrintDialog>

PrintJob::PrintJob() : printer_(QPrinter::HighResolution) {}

bool PrintJob::choose(QWidget *parent)
{
    if (MessageScript *script = MessageScript::active()) {
        if (script->printToPdf().isEmpty())
            return false;
        printer_.setOutputFormat(QPrinter::PdfFormat);
        printer_.setOutputFileName(script->printToPdf());
        return true;
    }
    QPrintDialog dialog(&printer_, parent);
    dialog.setWindowTitle(QStringLiteral("Print"));
    return dialog.exec() == QDialog::Accepted;
}
