#include "AppError.h"

AppError::AppError(double number, const QString &description, const QString &statement)
    : std::runtime_error(description.toStdString()), number_(number), description_(description), statement_(statement)
{
}
