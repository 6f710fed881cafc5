#include "frmImages.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <QtMath>

namespace {

void drawBadge(QPainter &p, const QColor &fill, int size, bool octagon)
{
    const QRectF r(1, 1, size - 2, size - 2);
    p.setPen(QPen(fill.darker(140), size / 16.0));
    p.setBrush(fill);
    if (!octagon) {
        p.drawEllipse(r);
        return;
    }
    QPolygonF poly;
    const QPointF c = r.center();
    const double radius = r.width() / 2.0;
    for (int i = 0; i < 8; ++i) {
        const double a = qDegreesToRadians(22.5 + 45.0 * i);
        poly << QPointF(c.x() + radius * std::cos(a), c.y() + radius * std::sin(a));
    }
    p.drawPolygon(poly);
}

void drawGlyph(QPainter &p, const QString &glyph, int size)
{
    QFont font = p.font();
    font.setBold(true);
    font.setPixelSize(int(size * 0.62));
    p.setFont(font);
    p.setPen(Qt::white);
    p.drawText(QRectF(0, 0, size, size), Qt::AlignCenter, glyph);
}

} // namespace

QPixmap frmImages::picture(MessagePicture which, int size)
{
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    if (which == MessagePicture::None)
        return pixmap;
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    switch (which) {
    case MessagePicture::picmessage:
        drawBadge(p, QColor(0x2f, 0x6f, 0xb3), size, false);
        drawGlyph(p, QStringLiteral("i"), size);
        break;
    case MessagePicture::picSaved: {
        drawBadge(p, QColor(0x2e, 0x8b, 0x57), size, false);
        QPainterPath tick;
        tick.moveTo(size * 0.27, size * 0.52);
        tick.lineTo(size * 0.44, size * 0.69);
        tick.lineTo(size * 0.74, size * 0.33);
        p.setPen(QPen(Qt::white, size / 9.0, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        p.setBrush(Qt::NoBrush);
        p.drawPath(tick);
        break;
    }
    case MessagePicture::picStop:
        drawBadge(p, QColor(0xc0, 0x39, 0x2b), size, true);
        drawGlyph(p, QStringLiteral("!"), size);
        break;
    case MessagePicture::picQuestion:
        drawBadge(p, QColor(0x1f, 0x8a, 0x9e), size, false);
        drawGlyph(p, QStringLiteral("?"), size);
        break;
    case MessagePicture::picError:
        drawBadge(p, QColor(0x9b, 0x1c, 0x1c), size, false);
        p.setPen(QPen(Qt::white, size / 9.0, Qt::SolidLine, Qt::RoundCap));
        p.drawLine(QPointF(size * 0.32, size * 0.32), QPointF(size * 0.68, size * 0.68));
        p.drawLine(QPointF(size * 0.68, size * 0.32), QPointF(size * 0.32, size * 0.68));
        break;
    case MessagePicture::None:
        break;
    }
    return pixmap;
}
