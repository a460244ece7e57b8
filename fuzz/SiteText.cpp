#include "FuzzInput.h"
#include "plan/Forecast.h"
#include "site/SiteFile.h"

// Site files. A file without an error describes a site whose polls can be forecast.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto readTable = [](const std::string&) -> text::FileText {
        return {"id,name,kind,address\n1,LEVEL,analog,R1\n2,RUN,status,O32\n", {}};
    };
    const host::LoadedSite loaded = host::readSite(text, "site.toml", readTable);
    if (!loaded.findings.hasErrors())
        require(!host::describeSite(loaded.site).empty(), "a good site has a description");
    return 0;
}
