#include "jobfile/JobFixture.h"

#include <algorithm>
#include <filesystem>

#include "platform/common/Format.h"

namespace morvil::test {

JobFixture::JobFixture() : config(CPrinterConfig::defaultConfiguration()) {
    m_spool = CMvConfig().spoolFolder();  // makes the folders and says where the log goes
    config.size.width = 0.46F;
    config.size.height = 0.1F;
    config.size.pixelWidth = 9;
    config.size.pixelHeight = 2;
    config.flags = 0;
    copyText(config.application.name, TEXT("draw.exe"));
    clearLog();
}

WString JobFixture::inSpool(WStringView file) const { return format(TEXT("%s\\%s"), m_spool, file); }

std::vector<std::string> JobFixture::spoolFiles() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_home.hostPath(m_spool)))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> JobFixture::messages() const {
    const WString path = logState().folder + TEXT("\\log_morvil.txt");
    return exists(path) ? messagesOf(readBytes(path)) : std::vector<std::string>();
}

bool JobFixture::logged(const std::string& message) const {
    const std::vector<std::string> all = messages();
    return std::find(all.begin(), all.end(), message) != all.end();
}

void JobFixture::clearLog() {
    const WString path = logState().folder + TEXT("\\log_morvil.txt");
    DeleteFileW(path.c_str());
}

std::unique_ptr<CSpoolFile> JobFixture::begin(int bitmapMode) {
    auto writer = std::make_unique<CSpoolFile>();
    writer->SetPrinterConfig(&config);
    writer->SetJobName(TEXT("Plan"));
    writer->WriteHeader();
    writer->CreateBitmap(bitmapMode);
    writer->WriteVectorSection();
    return writer;
}

std::string JobFixture::headerOf(const ConfigurationRecord& record) {
    CSpoolFile writer;
    writer.SetPrinterConfig(&record);
    writer.SetJobName(TEXT("Plan"));
    writer.WriteHeader();
    const std::string job = bytesOf(writer);
    const std::string end = "<EndGroup: Header>\r\n";
    const std::size_t at = job.find(end);
    return at == std::string::npos ? job : job.substr(0, at + end.size());
}

OtherProcess::~OtherProcess() {
    {
        const std::lock_guard lock(m_mutex);
        m_ends = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void OtherProcess::run(const std::function<void()>& task) {
    std::unique_lock lock(m_mutex);
    m_task = task;
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return !m_task; });
}

void OtherProcess::work() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_task || m_ends; });
        if (!m_task) return;
        m_task();
        m_task = nullptr;
        m_changed.notify_all();
    }
}

std::string vectorsOf(const std::string& job) {
    const std::size_t at = job.find("<BegGroup: DrawCommands>");
    return at == std::string::npos ? std::string() : job.substr(at);
}

std::string commandsOf(const std::string& job) {
    const std::string begin = "<BegGroup: DrawCommands>\r\n";
    const std::string end = "<EndGroup: DrawCommands>\r\n";
    const std::string section = vectorsOf(job);
    if (!section.ends_with(end) || section.size() < begin.size() + end.size()) return "not closed: " + section;
    std::string commands = section.substr(begin.size(), section.size() - begin.size() - end.size());
    if (commands.ends_with("\r\n")) commands.resize(commands.size() - 2);
    return commands;
}

std::string littleEndian(std::uint32_t value, std::size_t bytes) {
    std::string text;
    for (std::size_t i = 0; i < bytes; ++i) text.push_back(static_cast<char>(static_cast<unsigned char>((value >> (8 * i)) & 0xFF)));
    return text;
}

std::string smallImage(const std::string& rows) {
    const std::string palette("\x00\x00\x00\x00\xFF\xFF\xFF\x00", 8);
    return "BM" + littleEndian(54 + 8 + 8, 4) + littleEndian(0, 4) + littleEndian(62, 4) + littleEndian(40, 4) + littleEndian(9, 4) +
           littleEndian(2, 4) + littleEndian(1, 2) + littleEndian(1, 2) + littleEndian(0, 4) + littleEndian(8, 4) + std::string(16, '\0') +
           palette + rows;
}

}  // namespace morvil::test
