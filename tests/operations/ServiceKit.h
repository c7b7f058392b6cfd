#pragma once
// What the service tests share: the sample service's program and the log lines
// that programs wrote below a folder.

#include "utl/TempDir.h"

#include <filesystem>
#include <string>

namespace service_kit {

inline std::string SampleService()
{
    return std::string(KORVA_BINARY_DIR) + "/bin/sampleservice";
}

/// Every log file below `folder`, one after another.
inline std::string LogText(const std::string& folder)
{
    std::string text;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.path().extension() == ".log")
            text += ReadFile(entry.path());
    return text;
}

} // namespace service_kit
