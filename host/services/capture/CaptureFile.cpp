#include "CaptureFile.h"

#include "Pcap.h"

#include <SystemText.h>

#include <cerrno>
#include <fstream>
#include <system_error>
#include <utility>

namespace host {

namespace {

namespace fs = std::filesystem;

// Streams do not say why they fail, the calls beneath them leave it in errno.
std::string systemFault() {
    return errno == 0 ? "" : std::generic_category().message(errno);
}

bool beginsLikeACapture(const fs::path& path) {
    TelegramBytes begin(4);
    std::ifstream stream(path, std::ios::binary);
    stream.read(reinterpret_cast<char*>(begin.data()), static_cast<std::streamsize>(begin.size()));
    const TelegramBytes bigEndian{0xA1, 0xB2, 0xC3, 0xD4};
    const TelegramBytes littleEndian{0xD4, 0xC3, 0xB2, 0xA1};
    return begin == bigEndian || begin == littleEndian;
}

} // namespace

std::unique_ptr<std::ostream> CaptureFile::openFile(const fs::path& path, std::ios_base::openmode mode) {
    return std::make_unique<std::ofstream>(path, mode | std::ios::binary);
}

CaptureFile::CaptureFile(const CaptureOptions& captureOptions, Open openStream)
    : options(captureOptions), path(fs::u8path(captureOptions.path)), open(std::move(openStream)) {}

CaptureFile::~CaptureFile() = default;

// "line.pcap", "line.1.pcap"
fs::path CaptureFile::pathOf(unsigned number) const {
    if (number == 0)
        return path;
    fs::path name = path.stem();
    name += "." + std::to_string(number);
    name += path.extension();
    return path.parent_path() / name;
}

std::string CaptureFile::begin() {
    std::string inTheWay = whatIsInTheWay();
    if (!inTheWay.empty())
        return inTheWay;
    if (!moveOn())
        return "\"" + options.path + "\" of an earlier capture cannot be renamed" +
               (why.empty() ? "" : ": " + why) + "; check the permissions of its directory";
    if (!openStream(std::ios::trunc))
        return "\"" + options.path + "\" cannot be written" + (why.empty() ? "" : ": " + why) +
               "; check that its directory exists and its permissions";
    append(pcapHeader());
    return "";
}

// Files are moved and removed by their names: what a mistyped name may have hit is left alone.
std::string CaptureFile::whatIsInTheWay() const {
    std::error_code failure;
    const fs::file_status status = fs::status(path, failure);
    if (!fs::exists(status))
        return "";
    if (!fs::is_regular_file(status))
        return "\"" + options.path + "\" is no file that can be captured into; give another name";
    if (fs::file_size(path, failure) > 0 && !beginsLikeACapture(path))
        return "\"" + options.path + "\" exists and is no capture; give another name";
    return "";
}

bool CaptureFile::moveOn() {
    std::error_code failure;
    if (fs::file_size(path, failure) == 0 || failure)
        return true; // there is nothing to keep
    for (unsigned number = options.files; number-- > 0;) {
        if (!fs::is_regular_file(pathOf(number), failure))
            continue;
        if (number + 1 < options.files)
            fs::rename(pathOf(number), pathOf(number + 1), failure);
        else
            fs::remove(pathOf(number), failure);
        if (failure) {
            why = text::systemText(failure);
            return false;
        }
    }
    return true;
}

bool CaptureFile::openStream(std::ios_base::openmode mode) {
    errno = 0;
    stream = open(path, std::ios::out | mode);
    if (stream->good())
        return true;
    why = systemFault();
    stream.reset();
    return false;
}

bool CaptureFile::openNew() {
    size = 0;
    return openStream(std::ios::trunc) && append(pcapHeader());
}

// After a refusal.
bool CaptureFile::goOn() {
    if (size == 0)
        return openNew();
    cutBack();
    std::error_code failure;
    if (fs::file_size(path, failure) == size && !failure)
        return openStream(std::ios::app);
    return beginNext();
}

bool CaptureFile::beginNext() {
    stream.reset();
    return moveOn() && openNew();
}

std::size_t CaptureFile::write(const std::vector<TelegramBytes>& records) {
    std::size_t taken = 0;
    while (taken < records.size()) {
        if (!stream && !goOn())
            break;
        if (isFullFor(records[taken]) && !beginNext())
            break;
        const std::size_t end = taken + countFitting(records, taken);
        TelegramBytes bytes;
        for (std::size_t i = taken; i < end; ++i)
            bytes.insert(bytes.end(), records[i].begin(), records[i].end());
        if (!append(bytes))
            break;
        taken = end;
    }
    return taken;
}

// A file holds at least one record, however large that is.
bool CaptureFile::isFullFor(const TelegramBytes& record) const {
    return size > pcapHeader().size() && size + record.size() > options.fileSize;
}

std::size_t CaptureFile::countFitting(const std::vector<TelegramBytes>& records, std::size_t first) const {
    std::uint64_t end = size + records[first].size();
    std::size_t count = 1;
    while (first + count < records.size() && end + records[first + count].size() <= options.fileSize)
        end += records[first + count++].size();
    return count;
}

bool CaptureFile::append(const TelegramBytes& bytes) {
    errno = 0;
    stream->write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    stream->flush();
    if (stream->good()) {
        size += bytes.size();
        return true;
    }
    why = systemFault();
    stream.reset();
    cutBack();
    return false;
}

// To the last whole record. A file that has become shorter is not made longer.
void CaptureFile::cutBack() {
    std::error_code failure;
    if (fs::file_size(path, failure) > size && !failure)
        fs::resize_file(path, size, failure);
}

} // namespace host
