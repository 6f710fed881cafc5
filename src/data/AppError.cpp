#include "AppError.h"

AppError::AppError(double number, const QString &description, const QString &statement)
    : std::runtime_error(description.toStdString()), number_(number), description_(description), statement_(statement)
{
}

AppError::AppError(double number, const QString &description, const QString &statement, Cause cause)
    : AppError(number, description, statement)
{
    cause_ = cause;
}

QString AppError::duplicateValuesText()
{
    return QStringLiteral("The changes you requested to the table were not successful because they would create duplicate "
                          "values in the index, primary key, or relationship.  Change the data in the field or fields that "
                          "contain duplicate data, remove the index, or redefine the index to permit duplicate entries and try again.");
}
