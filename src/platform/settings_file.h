// One settings file in memory: sections, values, and every other line as it stands. The format is
// described in settings_backend.h; nothing here touches the disk.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace platform {

class SettingsFile {
  public:
    // Nothing when the bytes are no text at all. Lines that make no sense are kept and noted.
    static std::optional<SettingsFile> parse(const QByteArray& bytes);

    // Numbers of the lines (from 1) that could not be understood.
    const std::vector<int>& oddLines() const { return oddLines_; }

    std::optional<QString> value(const QString& key, const QString& name) const;
    void setValue(const QString& key, const QString& name, const QString& value);
    QByteArray toBytes() const;

  private:
    struct Line {
        QString text;                 // as in the file
        QString key;                  // of the section it lies in
        QString name;                 // empty for comments, headers and odd lines
        std::optional<QString> value; // of a named line; none when it cannot be decoded
    };

    void addLine(const QString& text, QString& key);
    const Line* find(const QString& key, const QString& name) const;

    std::vector<Line> lines_;
    std::vector<int> oddLines_;
};

} // namespace platform
