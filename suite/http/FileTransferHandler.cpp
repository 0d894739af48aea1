#include "HttpLib.h"

struct FileTransferHandler::State {
    WriteDataFunction write;
};

FileTransferHandler::FileTransferHandler() : m_state(std::make_unique<State>()) {}
FileTransferHandler::~FileTransferHandler() = default;

void FileTransferHandler::SetWriteDataFunc(WriteDataFunction function) {
    m_state->write = std::move(function);
}

bool FileTransferHandler::WriteData(const char* data, std::size_t size, bool finalBlock) {
    return m_state->write && m_state->write(data, size, finalBlock);
}
