#pragma once

// The key lines at the bottom of dialogs and menu panes, named by what they offer, with their exact
// texts: operators learn them, so every screen that offers the same keys shows the same line.
namespace Kovo::Footer {

inline constexpr const char* kOk =
    "{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}{/align}";
// The same keys as kOk, spelled as the network restart and restore have always shown them.
inline constexpr const char* kOkAfterRestart =
    "{align:right}{color:black}<Enter>{/color}{color:dark-grey} OK{/color}{/align}";
inline constexpr const char* kOkCancel =
    "{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}  {color:black}<Esc>{/color} "
    "{color:dark-grey}Cancel{/color}{/align}";
inline constexpr const char* kCancel =
    "{align:right}{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";
inline constexpr const char* kF11OkCancel =
    "{align:right}{color:black}<F11>{/color} {color:dark-grey}OK{/color}  {color:black}<Esc>{/color} "
    "{color:dark-grey}Cancel{/color}{/align}";
inline constexpr const char* kConfirmCancel =
    "{color:black}<Enter>{/color} {color:dark-grey}Confirm{/color}{align:right}{color:black}<Esc>{/color} "
    "{color:dark-grey}Cancel{/color}{/align}";
inline constexpr const char* kToggleOkCancel =
    "{color:black}<Space>{/color} {color:dark-grey}Toggle "
    "Selected{/color}{align:right}{color:black}<Enter>{/color} "
    "{color:dark-grey}OK{/color}  {color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";
inline constexpr const char* kSelectOkCancel =
    "{color:black}<Up/Down>{/color} {color:dark-grey}Select{/color}{align:right}{color:black}<Enter>{/color} "
    "{color:dark-grey}OK{/color}  {color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";
inline constexpr const char* kSelectMarkOkCancel =
    "{color:black}<Up/Down>{/color} {color:dark-grey}Select{/color}  {color:black}<Space>{/color} "
    "{color:dark-grey}Mark Selected{/color}{align:right}{color:black}<Enter>{/color} "
    "{color:dark-grey}OK{/color}  {color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";
inline constexpr const char* kSelectToggleOkCancel =
    "{color:black}<Up/Down>{/color} {color:dark-grey}Select{/color}  {color:black}<Space>{/color} "
    "{color:dark-grey}Toggle Selected{/color}{align:right}{color:black}<Enter>{/color} "
    "{color:dark-grey}OK{/color}"
    "  {color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";
inline constexpr const char* kYesNoCancel =
    "{color:black}<Y>{/color} {color:dark-grey}Yes{/color}  {color:black}<N>{/color} "
    "{color:dark-grey}No{/color}"
    "{align:right}{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}{/align}";
inline constexpr const char* kKeepRestore =
    "{color:black}<Y>{/color} {color:dark-grey}Keep{/color}  {color:black}<N>{/color} "
    "{color:dark-grey}Restore Previous{/color}";
inline constexpr const char* kShutDownRestartCancel =
    "{color:black}<F2>{/color} {color:dark-grey}Shut Down{/color}  {color:black}<F11>{/color} "
    "{color:dark-grey}Restart{/color}{align:right}{color:black}<Esc>{/color} {color:dark-grey}Cancel{/color}"
    "{/align}";
inline constexpr const char* kRestartHost =
    "{align:right}{color:black}<Enter>{/color} {color:dark-grey}Restart Host{/color}{/align}";
// Kept as operators have always seen it: "{align:left}" and the colour "black>" are not markup tags, so
// "<F3>" keeps the footer's own colours.
inline constexpr const char* kSwitchLoginOkCancel =
    "{align:left}{color:black>}<F3>{/color} {color:dark-grey}Switch PIN/Password Login{/color}{/align}"
    "{align:right}{color:black}<Enter>{/color} {color:dark-grey}OK{/color}  {color:black}<Esc>{/color} "
    "{color:dark-grey}Cancel{/color}{/align}";

// Menu windows: the list pane's keys, and the detail pane's action.
inline constexpr const char* kMenuSelectLogOut =
    "{color:black}<Up/Down>{/color} {color:dark-grey}Select{/color}  "
    "{color:black}<Esc>{/color} {color:dark-grey}Log Out{/color}";
inline constexpr const char* kMenuSelect = "{color:black}<Up/Down>{/color} {color:dark-grey}Select{/color}";
inline constexpr const char* kDetailChange =
    "{align:right}{color:white}<Enter>{/color} {color:light-grey}Change{/color}{/align}";
inline constexpr const char* kDetailChangeExit =
    "{color:white}<Enter>{/color}{color:light-grey} Change{/color}{align:right}{color:white}<Esc>{/color}"
    "{color:light-grey} Exit{/color}{/align}";
inline constexpr const char* kDetailRestartExit =
    "{color:white}<Enter>{/color}{color:light-grey} Restart{/color}{align:right}{color:white}<Esc>{/color}"
    "{color:light-grey} Exit{/color}{/align}";

}  // namespace Kovo::Footer
