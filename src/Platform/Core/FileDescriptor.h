// An open file of the system, closed when its owner goes.
#pragma once

#include <cerrno>
#include <system_error>
#include <unistd.h>
#include <utility>

/// Throws what `errno` says.
[[noreturn]] inline void failWithErrno() {
    throw std::system_error(errno, std::generic_category());
}

class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(m_descriptor, other.m_descriptor); // the other one closes what was here
        return *this;
    }
    ~FileDescriptor() {
        if (isOpen())
            ::close(m_descriptor);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    int get() const { return m_descriptor; }
    /// Throws the reason when it fails: network file systems report a full disk here.
    void close() {
        if (::close(std::exchange(m_descriptor, -1)) != 0)
            failWithErrno();
    }

  private:
    int m_descriptor = -1;
};
