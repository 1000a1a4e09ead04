// paptool serve: a small download server for demos and tests.
#include <httplib.h>
#include <sys/socket.h>
#include <CLI/CLI.hpp>

#include <fstream>
#include <memory>
#include <mutex>

#include "app/modGeneralFunctions.h"
#include "platform/files/file_name.h"
#include "platform/files/paths.h"
#include "platform/text/code_page.h"
#include "tools/paptool/commands.h"
#include "tools/paptool/console.h"
#include "tools/paptool/download_index.h"
#include "tools/paptool/paths.h"
#include "updates/DownloadFolder.h"
#include "updates/modSharedPap.h"

namespace paptool {
namespace {

constexpr char kLoopback[] = "127.0.0.1";
constexpr int kUnauthorized = 401;
constexpr int kNotFound = 404;

struct ServeOptions {
  std::string folder;
  int port = ORV_DEMO_SERVER_PORT;
};

std::string Utf8(const wchar_t* text) { return text::WideToUtf8(text); }

bool IsAllowed(const httplib::Request& request) {
  static const std::string expected =
      httplib::make_basic_authentication_header(Utf8(DownloadFolder::kUserName),
                                                Utf8(DownloadFolder::kPassword))
          .second;
  return request.get_header_value("Authorization") == expected;
}

// A piece at a time, so that a file of any size takes no memory.
void SendFile(const std::filesystem::path& path, httplib::Response& response) {
  auto file = std::make_shared<std::ifstream>(path, std::ios::binary | std::ios::ate);
  if (!*file) {
    response.status = kNotFound;
    return;
  }
  response.set_content_provider(
      static_cast<std::size_t>(file->tellg()), "application/octet-stream",
      [file](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
        constexpr std::size_t kPiece = 256 * 1024;
        std::string piece(std::min(length, kPiece), '\0');
        file->seekg(static_cast<std::streamoff>(offset));
        file->read(piece.data(), static_cast<std::streamsize>(piece.size()));
        return file->gcount() == static_cast<std::streamsize>(piece.size()) &&
               sink.write(piece.data(), piece.size());
      });
}

void Answer(const std::wstring& folder, const httplib::Request& request,
            httplib::Response& response) {
  if (!IsAllowed(request)) {
    response.status = kUnauthorized;
    response.set_header("WWW-Authenticate", "Basic realm=\"updates\"");
    return;
  }
  const std::wstring name = text::Utf8ToWide(request.matches[1].str());
  if (name == DownloadFolder::kIndexFile) {
    response.set_content(DownloadIndex(folder), "text/plain");
  } else if (files::IsPlainFileName(name) && IsPapFile(name)) {
    SendFile(files::ToPath(AddBackslash(folder) + name), response);
  } else {
    response.status = kNotFound;
  }
}

// A port that a server had a moment ago may be taken again, one that a server has now may not.
void AllowRestart(socket_t socket) {
  const int yes = 1;
  setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

int Serve(const ServeOptions& options) {
  const std::wstring folder = AbsolutePath(options.folder);
  if (!files::FolderExists(folder)) {
    PrintError(L"there is no folder " + folder + L".");
    return kWrongUsage;
  }
  httplib::Server server;
  server.set_socket_options(&AllowRestart);
  std::mutex output;
  server.Get(Utf8(DownloadFolder::kPath) + "([^/]+)",
             [&](const httplib::Request& request, httplib::Response& response) {
               Answer(folder, request, response);
             });
  server.set_logger([&output](const httplib::Request& request, const httplib::Response& response) {
    const std::lock_guard lock(output);
    PrintLine(std::to_string(response.status) + "  " + request.path);
    FlushOutput();
  });

  int port = options.port;
  if (port == 0) {
    port = server.bind_to_any_port(kLoopback);
  } else if (!server.bind_to_port(kLoopback, port)) {
    port = -1;
  }
  if (port < 0) {
    PrintError(L"cannot listen at port " + std::to_wstring(options.port) +
               L"; is it in use? Give another one with --port.");
    return kFailed;
  }
  PrintLine(L"Serving " + folder + L" at http://127.0.0.1:" + std::to_wstring(port) +
            DownloadFolder::kPath + L" until Ctrl+C.");
  FlushOutput();
  return server.listen_after_bind() ? kDone : kFailed;
}

}  // namespace

void AddServeCommand(CLI::App& app, Work& work) {
  constexpr int kLastPort = 65535;
  CLI::App* command =
      app.add_subcommand("serve", "Be a download server for a folder of update files");
  auto options = std::make_shared<ServeOptions>();
  command->add_option("DIR", options->folder, "The folder with the update files")
      ->required()
      ->check(PathProblem);
  command->add_option("--port", options->port, "Where to listen; 0 for any free port")
      ->capture_default_str()
      ->check(CLI::Range(0, kLastPort));
  command->footer(
      "For demos and tests: only programs on this machine can reach it. The index Info.txt is\n"
      "made anew from the files at every request; user and password are those that the wizard\n"
      "sends. Prints a line a request, until it is stopped.");
  command->callback([&work, options] { work = [options] { return Serve(*options); }; });
}

}  // namespace paptool
