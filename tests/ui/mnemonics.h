// The letters that captions underline.
#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

// The letter behind the first single "&"; null without.
inline QChar mnemonicOf(QString caption) {
    caption.remove(QStringLiteral("&&"));
    const qsizetype at = caption.indexOf(u'&');
    return at >= 0 && at + 1 < caption.size() ? caption[at + 1].toLower() : QChar();
}

// Each letter leads to one of the captions alone.
inline void expectOwnMnemonics(const QStringList& captions) {
    QSet<QChar> seen;
    for (const QString& caption : captions) {
        const QChar letter = mnemonicOf(caption);
        EXPECT_FALSE(!letter.isNull() && seen.contains(letter)) << caption.toStdString();
        seen.insert(letter);
    }
}
