#pragma once

#include "CaptureOptions.h"
#include "telegram/Exchange.h"

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <memory>

namespace host {

// The file in which a capture grows, "line.pcap", and those that were it before: "line.1.pcap" is the last of
// them, "line.2.pcap" the one before, and so on. Each is a capture by itself, with a header of its own.
// Before a record would make the file larger than it may get, all files move on by one number and a new one
// begins; the oldest is removed. So it is at the beginning, too: what an earlier run has captured moves on.
//
// When the disk refuses, the file is cut back to its last whole record. The next write goes on behind that,
// or begins a new file when the old one is not as it was left.
//
// One thread at a time.
class CaptureFile {
public:
    // For writing; with `std::ios::app` behind what the file holds, else from the beginning.
    using Open =
        std::function<std::unique_ptr<std::ostream>(const std::filesystem::path&, std::ios_base::openmode)>;

    explicit CaptureFile(const CaptureOptions& captureOptions, Open openStream = openFile);
    CaptureFile(const CaptureFile&) = delete;
    CaptureFile& operator=(const CaptureFile&) = delete;
    ~CaptureFile();

    // Begins the first file. Empty, or why there can be none: what is in the way and what to do. A disk that
    // is full is none of these, it may have room again.
    std::string begin();
    // How many of the records, from the first one on, the file has taken and handed to the system.
    std::size_t write(const std::vector<TelegramBytes>& records);
    // Why it took fewer than all, in the system's words; empty when the system does not say.
    const std::string& refusal() const { return why; }

    static std::unique_ptr<std::ostream> openFile(const std::filesystem::path& path,
                                                  std::ios_base::openmode mode);

private:
    std::filesystem::path pathOf(unsigned number) const;
    std::string whatIsInTheWay() const;
    bool moveOn();
    bool openStream(std::ios_base::openmode mode);
    bool openNew();
    bool goOn();
    bool beginNext();
    bool isFullFor(const TelegramBytes& record) const;
    std::size_t countFitting(const std::vector<TelegramBytes>& records, std::size_t first) const;
    bool append(const TelegramBytes& bytes);
    void cutBack();

    const CaptureOptions options;
    const std::filesystem::path path;
    const Open open;
    std::unique_ptr<std::ostream> stream; // none: closed, for the disk refused
    std::uint64_t size = 0; // of the growing file's header and whole records; 0: it has no header
    std::string why;
};

} // namespace host
