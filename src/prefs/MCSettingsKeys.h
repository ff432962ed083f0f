#pragma once

// Every key Kestrane keeps in its settings file, in one place so the store,
// the preset editor and the command line never disagree on a spelling.
namespace MCSettingsKeys {

inline constexpr char saveDirectory[] = "saveDirectory";           // path text, "" = none
inline constexpr char watchFolder[] = "watchFolder";               // path text, "" = none
inline constexpr char fontPath[] = "fontPath";                     // path text
inline constexpr char subPosition[] = "subPosition";               // decimal text
inline constexpr char subSize[] = "subSize";                       // decimal text
inline constexpr char showToolTips[] = "showToolTips";             // boolean
inline constexpr char keepLogs[] = "keepLogs";                     // boolean
inline constexpr char useLegacyEncoder[] = "useLegacyEncoder";     // boolean
inline constexpr char presetSelectionsArray[] = "presetSelectionsArray"; // list of maps
inline constexpr char presetSettingsArray[] = "presetSettingsArray";     // list of maps
inline constexpr char guiSettingsDictionary[] = "guiSettingsDictionary"; // map
inline constexpr char selectionIndex[] = "selectionIndex";         // decimal text
inline constexpr char settingIndex[] = "settingIndex";             // decimal text

} // namespace MCSettingsKeys
