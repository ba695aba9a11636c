#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace thntfs {

class CImageViewWindow;
class CPreviewWnd;
struct CatalogueItem;

/// The windows that show the content of a file: a picture, or the bytes of any other file; one of each kind
/// at most.
class Previews {
public:
    /// `changed` is called whenever one has been opened or closed.
    explicit Previews(std::function<void()> changed);
    ~Previews();
    Previews(const Previews&) = delete;
    Previews& operator=(const Previews&) = delete;

    /// Opens the window for an entry of the catalogue. Where one of its kind is open nothing happens. The
    /// content is read before this returns; no job may run.
    void ShowPreview(std::uint32_t entryId);

    [[nodiscard]] bool AnyOpen() const;

    /// Closes one window. False where none is open.
    bool CloseOne();

private:
    void ShowHex(const CatalogueItem& entry);
    void ShowImage(const CatalogueItem& entry);
    template <typename Window>
    std::function<void()> Forgetter(std::unique_ptr<Window>& window);

    std::function<void()> changed_;
    std::unique_ptr<CPreviewWnd> hexWindow_;
    std::unique_ptr<CImageViewWindow> imageWindow_;
};

} // namespace thntfs
