#pragma once
// Result codes of the compiled help path, with the platform's numbers, so that
// callers can compare them with what the storage functions return elsewhere.

using HRESULT = long;

inline constexpr HRESULT HELP_S_OK = 0;
inline constexpr HRESULT HELP_E_FAIL = static_cast<HRESULT>(0x80004005L);
inline constexpr HRESULT HELP_E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000EL);
inline constexpr HRESULT STG_E_FILENOTFOUND = static_cast<HRESULT>(0x80030002L);
inline constexpr HRESULT STG_E_PATHNOTFOUND = static_cast<HRESULT>(0x80030003L);
inline constexpr HRESULT STG_E_READFAULT = static_cast<HRESULT>(0x8003001EL);
