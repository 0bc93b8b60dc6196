#include "nametemplate.h"

#include "batchplan.h"

#include <QFileInfo>
#include <QRegularExpression>

NameTemplate::NameTemplate() = default;

NameTemplate NameTemplate::parsed(const QString &text, QString &problem)
{
    static const QRegularExpression piece(
        QStringLiteral("\\G(?:([^{}]+)|\\{(name)\\}|\\{number(?::([1-9]\\d?))?\\})"));
    NameTemplate result;
    int position = 0;
    while (position < text.size()) {
        const QRegularExpressionMatch match = piece.match(text, position);
        if (!match.hasMatch())
            break;
        if (!match.captured(1).isEmpty())
            result.m_pieces.append({Piece::Text, match.captured(1), 0});
        else if (!match.captured(2).isEmpty())
            result.m_pieces.append({Piece::Name, {}, 0});
        else
            result.m_pieces.append({Piece::Number, {}, match.captured(3).toInt()});
        position = match.capturedEnd();
    }
    if (text.isEmpty() || position < text.size())
        problem =
            QStringLiteral("{name}, {number} and {number:WIDTH}, WIDTH from 1 to 99, can stand in a name");
    else if (text.contains(QLatin1Char('/')))
        problem = QStringLiteral("a name has no slash; --output names the folder");
    return result;
}

QString NameTemplate::nameOf(const QString &inputPath, int number, const QString &extension) const
{
    if (m_pieces.isEmpty())
        return proposedName(inputPath, extension);
    QString name;
    for (const Piece &piece : m_pieces) {
        if (piece.kind == Piece::Name)
            name += QFileInfo(inputPath).baseName();
        else if (piece.kind == Piece::Number)
            name += QString::number(number).rightJustified(piece.width, QLatin1Char('0'));
        else
            name += piece.text;
    }
    const QString ending = QLatin1Char('.') + extension;
    return name.endsWith(ending, Qt::CaseInsensitive) ? name : name + ending;
}
