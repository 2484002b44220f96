#pragma once

#include <QHash>
#include <QStringList>

namespace Tavrin {
namespace Conf {

// The configuration of the formats the editor opens: named groups of file extensions
// ("video", "picture", "music"), read from formats.json (built in; a file of the same
// name in KLIPVANE_CONFIG_DIR replaces it).
class FormatConfiguration
{
public:
    static const FormatConfiguration& instance();

    QStringList groups() const { return m_groupOrder; }
    // Lower-case extensions without the dot; empty for an unknown group.
    QStringList extensions(const QString& group) const { return m_groups.value(group); }
    QStringList allExtensions() const;

    // Codec identifiers the product declares it cannot decode although a decoder may exist
    // (no licence for it): the "unsupportedCodecs" list of the configuration.
    QStringList declaredUnsupportedCodecs() const { return m_unsupportedCodecs; }

    // Parses a configuration; false (and a log line) when the text is not one.
    bool load(const QByteArray& json);

private:
    FormatConfiguration();
    QStringList m_groupOrder;
    QHash<QString, QStringList> m_groups;
    QStringList m_unsupportedCodecs;
};

} // namespace Conf
} // namespace Tavrin
