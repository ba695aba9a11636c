#include "properties/PropertyTexts.h"

#include "catalogue/CountBelow.h"
#include "content/EntryFacts.h"
#include "shell/CoreTexts.h"
#include "shell/ShownName.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>
#include <array>
#include <utility>

namespace thntfs {

namespace {

constexpr double kKilobyte = 1024;
constexpr std::uint64_t kMegabyte = 1048576;
constexpr std::uint64_t kGigabyte = 1073741824;

constexpr std::array<std::pair<std::uint32_t, const char*>, 14> kAttributeNames{{
    {0x1, QT_TRANSLATE_NOOP("PropertyTexts", "Read only")},
    {0x2, QT_TRANSLATE_NOOP("PropertyTexts", "Hidden")},
    {0x4, QT_TRANSLATE_NOOP("PropertyTexts", "System")},
    {0x10, QT_TRANSLATE_NOOP("PropertyTexts", "Folder")},
    {0x20, QT_TRANSLATE_NOOP("PropertyTexts", "Archive")},
    {0x80, QT_TRANSLATE_NOOP("PropertyTexts", "Normal")},
    {0x100, QT_TRANSLATE_NOOP("PropertyTexts", "Temporary")},
    {0x200, QT_TRANSLATE_NOOP("PropertyTexts", "Sparse")},
    {0x400, QT_TRANSLATE_NOOP("PropertyTexts", "Reparse point")},
    {0x800, QT_TRANSLATE_NOOP("PropertyTexts", "Compressed")},
    {0x1000, QT_TRANSLATE_NOOP("PropertyTexts", "Offline")},
    {0x2000, QT_TRANSLATE_NOOP("PropertyTexts", "Not indexed")},
    {0x4000, QT_TRANSLATE_NOOP("PropertyTexts", "Encrypted")},
    {0x10000000, QT_TRANSLATE_NOOP("PropertyTexts", "Folder index")},
}};

constexpr std::size_t kMaxLines = 1000; // of a row

QString SizeIn(std::uint64_t bytes, double unit, const char* name, bool counting) {
    return QString::asprintf("(%-7.3f %s)%s", static_cast<double>(bytes) / unit, name, counting ? "" : " ") +
           QCoreApplication::translate("PropertyTexts", "%1 bytes").arg(bytes);
}

QString RecordText(const CatalogueItem& item, const EntryFacts& facts) {
    const QString number = QString::number(item.RecordNumber);
    return facts.RecordRead
               ? number
               : QCoreApplication::translate("PropertyTexts", "%1, can't be read or is another's by now")
                     .arg(number);
}

// None where the catalogue's own path is all.
QStringList NameLines(const EntryFacts& facts) {
    QStringList lines;
    for (const std::string& name : facts.Names) {
        lines += QString::fromStdString(name);
    }
    const bool alone = facts.Names.size() == 1 && facts.Names.front() == facts.Path;
    return alone ? QStringList() : lines;
}

QStringList StreamLines(const EntryFacts& facts) {
    QStringList lines;
    for (const ExactStreamInfo& stream : facts.Streams) {
        lines += QCoreApplication::translate("PropertyTexts", "%1: %2 bytes")
                     .arg(ShownName(stream.Name))
                     .arg(stream.Size);
    }
    return lines;
}

QString PlaceText(const ExactPlace& place) {
    if (place.InRecord) {
        return QCoreApplication::translate("PropertyTexts", "In the record itself");
    }
    if (place.Runs == 0) {
        return QCoreApplication::translate("PropertyTexts", "Nowhere: it has no clusters");
    }
    return QCoreApplication::translate("PropertyTexts", "In %1 run(s) of clusters, the first at cluster %2")
        .arg(place.Runs)
        .arg(place.FirstCluster);
}

QString LinesText(const QStringList& lines) {
    QStringList shown = lines.mid(0, kMaxLines);
    if (shown.size() < lines.size()) {
        shown += QCoreApplication::translate("PropertyTexts", "and %1 more").arg(lines.size() - shown.size());
    }
    return shown.join(QLatin1Char('\n'));
}

void AddTimes(const ExactTimes& times, std::vector<PropertyRow>& rows) {
    for (const auto& [caption, time] :
         {std::pair(QT_TRANSLATE_NOOP("PropertyTexts", "Created at"), times.Created),
          {QT_TRANSLATE_NOOP("PropertyTexts", "Modified at"), times.Modified},
          {QT_TRANSLATE_NOOP("PropertyTexts", "Record changed at"), times.Changed},
          {QT_TRANSLATE_NOOP("PropertyTexts", "Accessed at"), times.Accessed}}) {
        rows.push_back({QCoreApplication::translate("PropertyTexts", caption),
                        time == 0 ? QString() : PropertyTime(time)});
    }
}

} // namespace

QString PropertySize(std::uint64_t bytes, bool counting) {
    if (bytes < kMegabyte) {
        return SizeIn(bytes, kKilobyte, "KB", counting);
    }
    return bytes < kGigabyte ? SizeIn(bytes, static_cast<double>(kMegabyte), "MB", counting)
                             : SizeIn(bytes, static_cast<double>(kGigabyte), "GB", counting);
}

QString PropertyContains(const BelowCounts& below) {
    return QCoreApplication::translate("PropertyTexts", "%1 Files, %2 Folders")
        .arg(below.Files)
        .arg(below.Folders);
}

QString PropertyDate(std::uint16_t dosDate) {
    const QDate date(1980 + (dosDate >> 9U), (dosDate >> 5U) & 15, dosDate & 31);
    return dosDate == 0 || !date.isValid()
               ? QCoreApplication::translate("PropertyTexts", "N\\A")
               : QLocale::c().toString(date, QStringLiteral("dddd, MMMM dd, yyyy"));
}

QString PropertyTime(std::uint64_t fileTime) {
    constexpr std::uint64_t kTicksOfMillisecond = 10000;
    constexpr qint64 kUnixEpoch = 11644473600000; // in milliseconds since 1601
    const auto since1970 = static_cast<qint64>(fileTime / kTicksOfMillisecond) - kUnixEpoch;
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(since1970);
    const int minutes = local.offsetFromUtc() / 60;
    return local.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz")) +
           QString::asprintf(" UTC%c%02d:%02d", minutes < 0 ? '-' : '+', qAbs(minutes) / 60,
                             qAbs(minutes) % 60);
}

QString PropertyAttributes(std::uint32_t bits) {
    QStringList names;
    for (const auto& [bit, name] : kAttributeNames) {
        if ((bits & bit) != 0) {
            names += QCoreApplication::translate("PropertyTexts", name);
        }
    }
    return names.join(QStringLiteral(", ")) + QString::asprintf(" (0x%08X)", bits);
}

std::vector<PropertyRow> FurtherProperties(const CatalogueItem& item, const EntryFacts& facts) {
    std::vector<PropertyRow> rows{
        {QCoreApplication::translate("PropertyTexts", "Full path"), QString::fromStdString(facts.Path)}};
    if (item.RecordSector != 0) {
        rows.push_back(
            {QCoreApplication::translate("PropertyTexts", "Record number"), RecordText(item, facts)});
    }
    AddTimes(facts.Times, rows);
    if (facts.AttributeBits != 0) {
        rows.push_back({QCoreApplication::translate("PropertyTexts", "NTFS attributes"),
                        PropertyAttributes(facts.AttributeBits)});
    }
    rows.push_back({QCoreApplication::translate("PropertyTexts", "All names"), LinesText(NameLines(facts))});
    rows.push_back(
        {QCoreApplication::translate("PropertyTexts", "Named streams"), LinesText(StreamLines(facts))});
    if (facts.Data) {
        rows.push_back({QCoreApplication::translate("PropertyTexts", "Data"), PlaceText(*facts.Data)});
    }
    rows.push_back({QCoreApplication::translate("PropertyTexts", "Condition"),
                    ShownCoreText(ConditionText(facts.Condition, item.IsLive()))});
    std::erase_if(rows, [](const PropertyRow& row) { return row.Text.isEmpty(); });
    return rows;
}

} // namespace thntfs
