#pragma once

#include <QByteArray>
#include <QHash>
#include <QMap>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QtEndian>

// The text shown on the pages of a PDF file as Qt's PDF writer makes it:
// each text run (BT ... ET) with its glyphs mapped back to characters
// through its font's ToUnicode table, one run per entry, in page order.
class PdfText {
public:
    explicit PdfText(const QByteArray& pdf) {
        readObjects(pdf);
        readFonts();
        for (const Object& object : objects_)
            if (object.stream.contains(" Tj")) readRuns(object.stream);
    }

    const QStringList& runs() const { return runs_; }
    int pageCount() const {
        static const QRegularExpression page("/Type\\s*/Page[^s]");
        int count = 0;
        for (const Object& object : objects_) count += object.dictionary.contains(page) ? 1 : 0;
        return count;
    }

private:
    struct Object {
        QString dictionary;
        QString stream;
    };

    void readObjects(const QByteArray& pdf) {
        qsizetype at = 0;
        for (;;) {
            const qsizetype found = pdf.indexOf(" 0 obj", at);
            if (found < 0) break;
            qsizetype numberStart = found;
            while (numberStart > 0 && pdf.at(numberStart - 1) >= '0' && pdf.at(numberStart - 1) <= '9')
                --numberStart;
            const int number = pdf.mid(numberStart, found - numberStart).toInt();
            const qsizetype end = pdf.indexOf("endobj", found);
            if (end < 0) break;
            QByteArray body = pdf.mid(found + 6, end - found - 6);
            Object object;
            const qsizetype streamAt = body.indexOf("stream");
            if (streamAt >= 0 && body.indexOf("endstream") > streamAt) {
                object.dictionary = QString::fromLatin1(body.left(streamAt));
                qsizetype dataAt = streamAt + 6;
                if (body.at(dataAt) == '\r') ++dataAt;
                if (body.at(dataAt) == '\n') ++dataAt;
                QByteArray data = body.mid(dataAt, body.lastIndexOf("endstream") - dataAt);
                if (object.dictionary.contains("/FlateDecode")) data = inflate(data);
                object.stream = QString::fromLatin1(data);
            } else {
                object.dictionary = QString::fromLatin1(body);
            }
            objects_[number] = object;
            at = end + 6;
        }
    }

    static QByteArray inflate(const QByteArray& data) {
        // qUncompress wants the expected size in front; it grows the buffer as needed.
        QByteArray sized(4, '\0');
        qToBigEndian<quint32>(static_cast<quint32>(data.size() * 8 + 1024), sized.data());
        return qUncompress(sized + data);
    }

    // "/F7 12 0 R" in a resource dictionary, the font's "/ToUnicode 9 0 R",
    // and that table's bfrange and bfchar entries.
    void readFonts() {
        static const QRegularExpression resource("/(F\\d+)\\s+(\\d+) 0 R");
        static const QRegularExpression toUnicode("/ToUnicode\\s+(\\d+) 0 R");
        static const QRegularExpression descendant("/DescendantFonts\\s*\\[\\s*(\\d+) 0 R");
        for (const Object& object : objects_) {
            auto matches = resource.globalMatch(object.dictionary);
            while (matches.hasNext()) {
                const QRegularExpressionMatch match = matches.next();
                const Object font = objects_.value(match.captured(2).toInt());
                QRegularExpressionMatch table = toUnicode.match(font.dictionary);
                if (!table.hasMatch()) {
                    const QRegularExpressionMatch child = descendant.match(font.dictionary);
                    if (child.hasMatch())
                        table = toUnicode.match(objects_.value(child.captured(1).toInt()).dictionary);
                }
                if (table.hasMatch())
                    fonts_[match.captured(1)] = readCMap(objects_.value(table.captured(1).toInt()).stream);
            }
        }
    }

    static QHash<int, QString> readCMap(const QString& cmap) {
        QHash<int, QString> map;
        static const QRegularExpression range(
            "<([0-9A-Fa-f]+)>\\s*<([0-9A-Fa-f]+)>\\s*(\\[[^\\]]*\\]|<[0-9A-Fa-f]+>)");
        static const QRegularExpression hex("<([0-9A-Fa-f]+)>");
        const qsizetype ranges = cmap.indexOf("beginbfrange");
        if (ranges >= 0) {
            const QString section = cmap.mid(ranges, cmap.indexOf("endbfrange", ranges) - ranges);
            auto entries = range.globalMatch(section);
            while (entries.hasNext()) {
                const QRegularExpressionMatch entry = entries.next();
                const int first = entry.captured(1).toInt(nullptr, 16);
                const int last = entry.captured(2).toInt(nullptr, 16);
                const QString target = entry.captured(3);
                if (target.startsWith('[')) {
                    auto values = hex.globalMatch(target);
                    for (int code = first; code <= last && values.hasNext(); ++code)
                        map[code] = QChar(values.next().captured(1).toInt(nullptr, 16));
                } else {
                    const int base = target.mid(1, target.size() - 2).toInt(nullptr, 16);
                    for (int code = first; code <= last; ++code) map[code] = QChar(base + code - first);
                }
            }
        }
        static const QRegularExpression single("<([0-9A-Fa-f]+)>\\s*<([0-9A-Fa-f]+)>");
        const qsizetype chars = cmap.indexOf("beginbfchar");
        if (chars >= 0) {
            const QString section = cmap.mid(chars, cmap.indexOf("endbfchar", chars) - chars);
            auto entries = single.globalMatch(section);
            while (entries.hasNext()) {
                const QRegularExpressionMatch entry = entries.next();
                map[entry.captured(1).toInt(nullptr, 16)] = QChar(entry.captured(2).toInt(nullptr, 16));
            }
        }
        return map;
    }

    void readRuns(const QString& content) {
        static const QRegularExpression token("/(F\\d+)\\s+[\\d.]+\\s+Tf|<([0-9A-Fa-f]+)>\\s*Tj|\\bET\\b");
        QString font;
        QString run;
        auto tokens = token.globalMatch(content);
        while (tokens.hasNext()) {
            const QRegularExpressionMatch match = tokens.next();
            if (!match.captured(1).isEmpty()) {
                font = match.captured(1);
            } else if (!match.captured(2).isEmpty()) {
                const QString glyphs = match.captured(2);
                for (qsizetype i = 0; i + 4 <= glyphs.size(); i += 4)
                    run += fonts_.value(font).value(glyphs.mid(i, 4).toInt(nullptr, 16), "?");
            } else {
                // Qt's tables give the blank's glyph the tab's code.
                run.replace(u'\t', u' ');
                runs_ << run;
                run.clear();
            }
        }
    }

    QMap<int, Object> objects_;  // by object number: the order written
    QHash<QString, QHash<int, QString>> fonts_;
    QStringList runs_;
};
