#pragma once

#include "services/capture/CaptureFile.h"

#include <condition_variable>
#include <fstream>
#include <mutex>

// A disk that refuses writes or keeps them waiting when the test says so. What it takes it puts into the
// files. Copies are the same disk. Any thread.
class TestDisk {
public:
    void refuse() { set(Mood::Refusing); }
    void hang() { set(Mood::Hanging); }
    void work() { set(Mood::Working); }
    // Whether a write waits, as it does on a disk that hangs.
    bool keepsAWriteWaiting() const {
        const std::lock_guard<std::mutex> lock(state->mutex);
        return state->isWriteWaiting;
    }
    // Streams that are open and functions that open some keep it in use.
    bool isInUse() const { return state.use_count() > 1; }

    host::CaptureFile::Open open() const {
        return [state = state](const std::filesystem::path& path,
                               std::ios_base::openmode mode) -> std::unique_ptr<std::ostream> {
            return std::make_unique<Stream>(state, path, mode | std::ios::binary);
        };
    }

private:
    enum class Mood { Working, Refusing, Hanging };

    struct State {
        // Whether it takes a write.
        bool takes() {
            std::unique_lock<std::mutex> lock(mutex);
            isWriteWaiting = mood == Mood::Hanging;
            changed.wait(lock, [this] { return mood != Mood::Hanging; });
            isWriteWaiting = false;
            return mood == Mood::Working;
        }

        std::mutex mutex; // guards what follows
        std::condition_variable changed;
        Mood mood = Mood::Working;
        bool isWriteWaiting = false;
    };

    class Buffer : public std::streambuf {
    public:
        Buffer(std::shared_ptr<State> diskState, const std::filesystem::path& path,
               std::ios_base::openmode mode)
            : state(std::move(diskState)) {
            file.open(path, mode);
        }

    protected:
        std::streamsize xsputn(const char* bytes, std::streamsize count) override {
            return state->takes() ? file.sputn(bytes, count) : 0;
        }
        int sync() override { return file.pubsync(); }

    private:
        const std::shared_ptr<State> state;
        std::filebuf file;
    };

    class Stream : public std::ostream {
    public:
        Stream(const std::shared_ptr<State>& state, const std::filesystem::path& path,
               std::ios_base::openmode mode)
            : std::ostream(nullptr), buffer(state, path, mode) {
            rdbuf(&buffer);
        }

    private:
        Buffer buffer;
    };

    void set(Mood mood) {
        const std::lock_guard<std::mutex> lock(state->mutex);
        state->mood = mood;
        state->changed.notify_all();
    }

    const std::shared_ptr<State> state = std::make_shared<State>();
};
