#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// How maps are named after their photographs: text with {name}, {number} and {number:WIDTH} in it.
class NameTemplate
{
public:
    /// The name that the window proposes.
    NameTemplate();

    /// @param problem  receives what is wrong with the text; is left alone if nothing is
    static NameTemplate parsed(const QString &text, QString &problem);

    /// @param inputPath  {name} is its file name up to the first dot
    /// @param number     position in the list, from 0
    /// @param extension  is appended unless the name ends in it
    QString nameOf(const QString &inputPath, int number, const QString &extension) const;

private:
    struct Piece {
        enum Kind { Text, Name, Number } kind;
        QString text;
        int width; ///< least number of digits
    };
    QVector<Piece> m_pieces;
};
