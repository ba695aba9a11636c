#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace thntfs {

/// A command as the user meets it. Its texts are keys of the context CommandTable for translators.
struct CommandText {
    std::uint32_t Id;
    const char* Menu;    ///< text in the menu; what stands behind the tab is its key. Empty: in no menu
    const char* Prompt;  ///< pane 0 of the status bar while the mouse is over it
    const char* ToolTip; ///< empty for none
    const char* Icon;    ///< name for LoadIcon, empty for none
};

/// All commands.
std::span<const CommandText> AllCommands();

/// The text of one; it must be in the table.
const CommandText& TextOfCommand(std::uint32_t command);

/// A line of a menu.
struct MenuLine {
    enum class Kind : std::uint8_t { Command, Separator, Submenu, EndSubmenu };
    Kind What;
    std::uint32_t Command;
    const char* Title; ///< of a submenu, as its prompt
    const char* Prompt;
};

struct MenuText {
    const char* Title;
    std::span<const MenuLine> Lines;
};

/// The menu bar from left to right.
std::span<const MenuText> AllMenus();

/// The toolbar's commands from left to right, 0 for a separator.
std::span<const std::uint32_t> ToolbarCommands();

} // namespace thntfs
