#include "preview/Previews.h"

#include "catalogue/CatalogueReader.h"
#include "content/EntryContent.h"
#include "content/TargetRules.h"
#include "content/WorkPlace.h"
#include "engine/EngineState.h"
#include "platform/files/File.h"
#include "preview/ImageViewWindow.h"
#include "preview/PictureFile.h"
#include "preview/PreviewWnd.h"
#include "shell/ShownName.h"
#include "shell/WaitCursor.h"

#include <QScreen>
#include <utility>

namespace thntfs {

namespace {

// No picture of that size fits the limit of its pixels, and the interface waits while it is read.
constexpr std::uint64_t kMaxPictureFile = std::uint64_t{512} << 20U;

/// While one lives, the writers of content send no progress.
class PreviewRead {
public:
    PreviewRead() {
        Engine.PreviewActive = true;
        Engine.BytesWritten = 0;
    }
    ~PreviewRead() {
        Engine.PreviewActive = false;
        Engine.BytesWritten = 0;
    }
    PreviewRead(const PreviewRead&) = delete;
    PreviewRead& operator=(const PreviewRead&) = delete;
};

// A folder of its own for the copy, which nobody else can look into. Null where none can be made.
std::unique_ptr<WorkFolder> MakeCopyFolder() {
    auto folder = std::make_unique<WorkFolder>();
    if (MakeWorkFolder(*folder, SourceMediumPath()).Code != kErrorNone) {
        return nullptr;
    }
    return folder;
}

// What can't be read makes a picture that can't be drawn. False where there is no picture at all, which a box
// has told, or the size.
bool CopyContent(const CatalogueItem& entry, File& copy) {
    if (entry.Size > kMaxPictureFile) {
        return false;
    }
    try {
        const WaitCursor hourglass;
        const PreviewRead reading;
        MissingData missing;
        ReadEntryContent(entry, copy, missing);
        return true;
    } catch (const CUserException&) {
        return false;
    }
}

void ShowLarge(QWidget& window) {
    QRect frame = window.frameGeometry();
    frame.moveCenter(window.screen()->availableGeometry().center());
    window.move(frame.topLeft());
    window.showMaximized();
}

} // namespace

Previews::Previews(std::function<void()> changed)
    : changed_(std::move(changed)) {}

Previews::~Previews() = default;

// A window that has been closed goes when the events that it is still handling are through.
template <typename Window>
std::function<void()> Previews::Forgetter(std::unique_ptr<Window>& window) {
    return [this, &window] {
        window.release()->deleteLater();
        changed_();
    };
}

void Previews::ShowPreview(std::uint32_t entryId) {
    const auto entry = LoadEntry(entryId);
    if (entry == nullptr) {
        return;
    }
    if (IsImageName(entry->Name)) {
        ShowImage(*entry);
    } else {
        ShowHex(*entry);
    }
}

void Previews::ShowHex(const CatalogueItem& entry) {
    if (hexWindow_ == nullptr) {
        hexWindow_ = std::make_unique<CPreviewWnd>(entry, Forgetter(hexWindow_));
        ShowLarge(*hexWindow_);
        changed_();
    }
}

void Previews::ShowImage(const CatalogueItem& entry) {
    auto folder = imageWindow_ == nullptr ? MakeCopyFolder() : nullptr;
    if (folder == nullptr) {
        return;
    }
    const std::string path = folder->Path() + '/' + PictureCopyName(entry.Name).toStdString();
    std::unique_ptr<File> copy;
    if (Files().Open(path, FileMode::CreateNew, copy) != kErrorNone) {
        return;
    }
    const bool copied = CopyContent(entry, *copy);
    copy.reset();
    imageWindow_ = std::make_unique<CImageViewWindow>(ShownName(entry.Name), Forgetter(imageWindow_));
    ShowLarge(*imageWindow_);
    if (copied) {
        imageWindow_->Load(std::move(folder), QString::fromStdString(path));
    } else {
        imageWindow_->ShowFailure();
    }
    changed_();
}

bool Previews::AnyOpen() const { return hexWindow_ != nullptr || imageWindow_ != nullptr; }

bool Previews::CloseOne() {
    if (hexWindow_ != nullptr) {
        return hexWindow_->close();
    }
    return imageWindow_ != nullptr && imageWindow_->close();
}

} // namespace thntfs
