#pragma once
// Result codes in the platform's numbering, shared by every part that hands
// them on (the browser's document functions, the help file storage), so that
// callers compare them with the usual names.

/// A result code: 0 or above succeeds, below 0 fails.
using HRESULT = long;

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005L);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000EL);
inline constexpr HRESULT STG_E_FILENOTFOUND = static_cast<HRESULT>(0x80030002L);
inline constexpr HRESULT STG_E_PATHNOTFOUND = static_cast<HRESULT>(0x80030003L);
inline constexpr HRESULT STG_E_READFAULT = static_cast<HRESULT>(0x8003001EL);

