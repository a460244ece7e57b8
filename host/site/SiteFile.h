#pragma once

#include "Site.h"

#include <TextFile.h>

#include <functional>

namespace host {

struct LoadedSite {
    Site site; // to be used only when the findings hold no error
    Findings findings;
};

// Reads a point table.
using FileReader = std::function<text::FileText(const std::string& path)>;

// Reads the site file at `path` and the point tables that it names; those stand beside it unless they are
// named with a full path. Everything that is wrong is found in one go.
LoadedSite loadSite(const std::string& path);
// The table [control] alone, for a client of the host that runs the site. What is wrong in the file, its host
// has told: here it counts as left out.
ControlSettings loadControlSettings(const std::string& path);
// The same from a text; `file` is its name, `readFile` opens the point tables.
LoadedSite readSite(const std::string& text, const std::string& file, const FileReader& readFile);

} // namespace host
