#include "RecordSources.h"

#include "Recordset.h"
#include "clsDataObject.h"

QList<RecordSource> RecordSources::enabled(clsDataObject &data)
{
    QList<RecordSource> sources;
    data.GetData(QStringLiteral("select SourceName, Address, Protocol, RecordSyntax, TimeoutSeconds, CharacterSet from tblLibRecordSources "
                                "where Enabled = true order by SourceID"));
    for (Recordset &rs = *data.rst; !rs.atEnd(); rs.MoveNext()) {
        RecordSource s;
        s.name = rs.field(0).toString();
        s.address = rs.field(1).toString();
        s.sru = rs.field(2).toString().compare(QLatin1String("SRU"), Qt::CaseInsensitive) == 0;
        if (!rs.field(3).isNull() && !rs.field(3).toString().isEmpty())
            s.syntax = rs.field(3).toString();
        if (!rs.field(4).isNull() && rs.field(4).toInt() > 0)
            s.timeoutSeconds = rs.field(4).toInt();
        s.characterSet = rs.field(5).isNull() ? QString() : rs.field(5).toString();
        sources << s;
    }
    data.CloseCompact();
    return sources;
}
