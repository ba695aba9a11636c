#include "dialogs/SaveWishes.h"

#include "shell/Settings.h"

#include <algorithm>

namespace thntfs {

namespace {

constexpr int kLastReach = static_cast<int>(SaveReach::ExistingOnly);

} // namespace

SaveWishes LoadSaveWishes() {
    const QSettings settings = OpenSettings();
    SaveWishes wishes;
    wishes.AsStored = settings.value(QStringLiteral("Save/AsStored")).toBool();
    wishes.Reach = static_cast<SaveReach>(
        std::clamp(settings.value(QStringLiteral("Save/Reach")).toInt(), 0, kLastReach));
    wishes.Streams = settings.value(QStringLiteral("Save/Streams")).toBool();
    wishes.Folder = settings.value(QStringLiteral("Save/Folder")).toString();
    wishes.IgnoresTypes = settings.value(QStringLiteral("Save/IgnoreTypes")).toBool();
    wishes.Types = settings.value(QStringLiteral("Save/Types")).toStringList();
    wishes.Compresses = settings.value(QStringLiteral("Save/Compress")).toBool();
    wishes.UsesPrefix = settings.value(QStringLiteral("Save/UsePrefix")).toBool();
    wishes.Prefix = settings.value(QStringLiteral("Save/Prefix")).toString();
    return wishes;
}

void KeepSaveWishes(const SaveWishes& wishes) {
    QSettings settings = OpenSettings();
    settings.setValue(QStringLiteral("Save/AsStored"), wishes.AsStored);
    settings.setValue(QStringLiteral("Save/Reach"), static_cast<int>(wishes.Reach));
    settings.setValue(QStringLiteral("Save/Streams"), wishes.Streams);
    settings.setValue(QStringLiteral("Save/Folder"), wishes.Folder);
    settings.setValue(QStringLiteral("Save/IgnoreTypes"), wishes.IgnoresTypes);
    settings.setValue(QStringLiteral("Save/Types"), wishes.Types);
    settings.setValue(QStringLiteral("Save/Compress"), wishes.Compresses);
    settings.setValue(QStringLiteral("Save/UsePrefix"), wishes.UsesPrefix);
    settings.setValue(QStringLiteral("Save/Prefix"), wishes.Prefix);
}

} // namespace thntfs
