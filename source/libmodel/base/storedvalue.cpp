#include "libmodel/base/storedvalue.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace Model {

QString opacityLevelsText(const QList<double> &levels)
{
    QString text;
    for (const double level : levels)
        text += QStringLiteral("%1;").arg(level, 0, 'f', 2);
    return text;
}

QList<double> opacityLevelsFromText(const QString &text)
{
    QLocale locale = QLocale::c();
    // Else "0,300" would be three hundred.
    locale.setNumberOptions(locale.numberOptions() | QLocale::RejectGroupSeparator);
    QList<double> levels;
    const QStringList parts = text.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        bool isNumber = false;
        const double level = locale.toDouble(part, &isNumber);
        if (isNumber && std::isfinite(level))
            levels.append(std::clamp(level, 0.0, 1.0));
    }
    return levels;
}

std::optional<QList<double>> StoredForm<QList<double>>::read(const QVariant &stored)
{
    // An unquoted comma in the store makes a list of what was one text.
    return opacityLevelsFromText(stored.toStringList().join(QLatin1Char(',')));
}

} // namespace Model
