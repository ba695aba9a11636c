#pragma once

#include <QString>
#include <QStringList>

namespace thntfs {

/// Images, disks and saved scans that were opened, in this run or an earlier one: absolute paths, the newest
/// first, none twice. Kept in the settings.
class RecentFiles {
public:
    static constexpr int kMost = 8; ///< as many as there are commands for them

    RecentFiles();

    [[nodiscard]] const QStringList& Paths() const { return paths_; }

    /// Something has been opened or saved. Saved scans among the system's temporary files aren't kept: they
    /// are somebody's for the moment.
    void Note(const QString& path);
    void Remove(const QString& path);
    void Clear();

private:
    void Keep() const;

    QStringList paths_;
};

} // namespace thntfs
