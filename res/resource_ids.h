#pragma once

// Ids of controls, commands, texts and images. Controls carry their id as object name.

namespace marvolen {

// Strings.
inline constexpr int IDS_ABOUT_MENU = 101;
inline constexpr int IDS_SOCKETS_FAILED = 103;

// Images.
inline constexpr int IDR_MAIN_ICON = 128;
inline constexpr int IDB_LOGO = 139;
inline constexpr int IDI_NEXT_PAGE = 144;
inline constexpr int IDI_PREVIOUS_PAGE = 145;
inline constexpr int IDC_CLEAR_CURSOR = 149;  // dragging a tab over no tab: dropping it clears
inline constexpr int IDC_DROP_CURSOR = 150;   // dragging a tab over another

// System menu command, compared with its low four bits masked off.
inline constexpr int SC_ABOUT = 0x10;

// Main window: the sixteen panes are 1008 to 1023.
inline constexpr int IDC_FIRST_PANE = 1008;
inline constexpr int IDC_PANE_FRAME = 1047;

// Control panel. The commands reach the main window under the same ids.
inline constexpr int IDC_RECORD_TOGGLE = 1000;
inline constexpr int IDC_STOP_ALL = 1001;
inline constexpr int IDC_START_ALL = 1002;
inline constexpr int IDC_SETTING = 1003;
inline constexpr int IDC_PLAYBACK = 1004;
inline constexpr int IDC_LOGO = 1037;
inline constexpr int IDC_EXIT = 1040;
inline constexpr int IDC_LOG_CLEAN = 1041;
inline constexpr int IDC_LOG_SAVE = 1042;
inline constexpr int IDC_LOG_LIST = 1043;
inline constexpr int IDC_PREVIOUS_PAGE = 1051;
inline constexpr int IDC_NEXT_PAGE = 1052;
inline constexpr int IDC_VIEW_1 = 1053;
inline constexpr int IDC_VIEW_4 = 1054;
inline constexpr int IDC_VIEW_16 = 1055;
inline constexpr int IDC_PAGE_TEXT = 1056;
inline constexpr int IDC_ENABLE_POPUP = 1064;

// Playback dialog. "Close" is IDCANCEL.
inline constexpr int IDC_PLAYER_STOP = 1000;
inline constexpr int IDC_PLAYER_SLIDER = 1006;
inline constexpr int IDC_PLAYER_OUTPUT = 1008;
inline constexpr int IDC_PLAYER_PANE = 1023;
inline constexpr int IDC_PLAYER_NEXT = 1028;
inline constexpr int IDC_PLAYER_PLAY = 1029;
inline constexpr int IDC_PLAYER_CHANNEL = 1032;
inline constexpr int IDC_PLAYER_PREV = 1038;
inline constexpr int IDC_PLAYER_PAUSE = 1039;
inline constexpr int IDC_PLAYER_SPEED = 1044;
inline constexpr int IDC_PLAYER_SELECT_START = 1060;
inline constexpr int IDC_PLAYER_SELECT_END = 1061;
inline constexpr int IDC_PLAYER_CHOOSE_OUTPUT = 1062;
inline constexpr int IDC_PLAYER_RENDER = 1063;

// Channel Setting dialog. "OK" and "Cancel" are IDOK and IDCANCEL.
inline constexpr int IDC_SETTING_TABS = 1002;
inline constexpr int IDC_SETTING_LOAD = 1058;
inline constexpr int IDC_SETTING_SAVE = 1059;
inline constexpr int IDC_SETTING_PASTE = 1060;

// Its pages.
inline constexpr int IDC_PAGE_RECORD_PATH = 1007;
inline constexpr int IDC_PAGE_HOST = 1013;
inline constexpr int IDC_PAGE_PORT = 1014;
inline constexpr int IDC_PAGE_MAX_SIZE = 1015;
inline constexpr int IDC_PAGE_USER_NAME = 1016;
inline constexpr int IDC_PAGE_PASSWORD = 1017;
inline constexpr int IDC_PAGE_CAMERA = 1018;
inline constexpr int IDC_PAGE_SIZE = 1019;
inline constexpr int IDC_PAGE_NET_NAME = 1020;
inline constexpr int IDC_PAGE_RATE = 1021;
inline constexpr int IDC_PAGE_CONNECT = 1034;
inline constexpr int IDC_PAGE_PREVIEW = 1036;
inline constexpr int IDC_PAGE_CHOOSE_PATH = 1042;

// Commands of a dragged tab and of the menu where it was dropped.
inline constexpr int IDM_TAB_MOVE = 1171;
inline constexpr int IDM_TAB_COPY = 1172;
inline constexpr int IDM_TAB_SWAP = 1173;
inline constexpr int IDM_TAB_DROP_OUTSIDE = 1174;
inline constexpr int IDM_TAB_CANCEL = 1175;

// Pop-up: its edit fields and marks.
inline constexpr int IDC_POPUP_CHANNEL = 1007;
inline constexpr int IDC_POPUP_NAME = 1008;
inline constexpr int IDC_POPUP_TIME = 1009;
inline constexpr int IDC_POPUP_CONNECTED = 1065;
inline constexpr int IDC_POPUP_RECORDING = 1066;

}  // namespace marvolen
