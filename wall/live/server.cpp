#include "live/server.h"

#include <httplib.h>

#include "board/faults.h"
#include "live/events.h"
#include "live/guard.h"
#include "live/orders.h"
#include "live/pages.h"

namespace quivord::live {
namespace {

using httplib::Request;
using httplib::Response;

constexpr std::size_t kMostBody = 4096;     // bytes of a request
constexpr std::time_t kReadTimeout_s = 2;   // a connection that says nothing
constexpr std::time_t kWriteTimeout_s = 3;  // a page that takes nothing
constexpr char kText[] = "text/plain; charset=utf-8";
constexpr char kJson[] = "application/json";
constexpr char kFull[] =
    "50 pages are watching this wall already, which is as many as it serves. Close one of them.\n";

// A look takes some milliseconds.
constexpr std::chrono::seconds kFirstLook{5};

const char* TypeOf(std::string_view name) {
  if (name.ends_with(".html")) return "text/html; charset=utf-8";
  if (name.ends_with(".css")) return "text/css; charset=utf-8";
  if (name.ends_with(".js")) return "text/javascript; charset=utf-8";
  if (name.ends_with(".svg")) return "image/svg+xml";
  return "application/octet-stream";
}

void Answer(Response& response, int status, const std::string& text) {
  response.status = status;
  response.set_content(text, kText);
}

// No other site may frame the page or run anything in it.
const httplib::Headers kHeaders = {
    {"Cache-Control", "no-store"},
    {"Content-Security-Policy", "default-src 'self'; frame-ancestors 'none'; base-uri 'none'"},
    {"Referrer-Policy", "no-referrer"},
    {"X-Content-Type-Options", "nosniff"},
};

void SetLimits(httplib::Server& http) {
  http.new_task_queue = [] { return new httplib::ThreadPool(Server::kThreads); };
  http.set_payload_max_length(kMostBody);
  http.set_read_timeout(kReadTimeout_s);
  http.set_write_timeout(kWriteTimeout_s);
  http.set_keep_alive_timeout(kReadTimeout_s);
  http.set_keep_alive_max_count(1);  // a connection at rest would hold one of the threads
  // Not to share the port with another program that listens on it.
  http.set_socket_options([](socket_t socket) {
    const int on = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  });
}

void ServeFiles(httplib::Server& http, const Publisher& publisher) {
  for (const PageFile& file : PageFiles()) {
    const auto send = [&file](const Request&, Response& response) {
      response.set_content(std::string(file.content), TypeOf(file.name));
    };
    std::string path = "/" + std::string(file.name);
    http.Get(path.replace(path.rfind('.'), 1, "\\."), send);  // paths are patterns
    if (file.name != "index.html") continue;
    http.Get("/", [send, &publisher](const Request& request, Response& response) {
      if (publisher.full()) return Answer(response, 503, kFull);
      send(request, response);
    });
  }
}

void ServeState(httplib::Server& http, Publisher& publisher) {
  http.Get("/state", [&publisher](const Request&, Response& response) {
    const auto seat = publisher.Join();
    if (seat == nullptr) return Answer(response, 503, kFull);
    const auto state = publisher.Await(nullptr, kFirstLook);
    if (state == nullptr) return Answer(response, 503, "the board can't be looked at\n");
    response.set_content(JsonText(Document(*state)), kJson);
  });
}

void ServeEvents(httplib::Server& http, Publisher& publisher, const Json& fixed) {
  http.Get("/events", [&publisher, fixed](const Request&, Response& response) {
    const auto seat = publisher.Join();
    if (seat == nullptr) return Answer(response, 503, kFull);
    const auto stream = std::make_shared<EventStream>(publisher, seat, fixed);
    response.set_chunked_content_provider(
        "text/event-stream", [stream](std::size_t, httplib::DataSink& sink) {
          const std::string text = stream->Next();
          return !text.empty() && sink.write(text.data(), text.size());
        });
  });
}

void ServeOrders(httplib::Server& http, const std::filesystem::path& folder,
                 const std::string& token) {
  http.Post("/order", [folder, token](const Request& request, Response& response) {
    const std::string host = request.get_header_value("Host");
    const std::string origin = request.get_header_value("Origin");
    const std::string type = request.get_header_value("Content-Type");
    const std::string secret = request.get_header_value("X-Quivord-Token");
    const std::string obstacle = ChangeObstacle({host, origin, type, secret}, token);
    if (!obstacle.empty()) return Answer(response, 403, "refused: " + obstacle + "\n");
    const auto order = ParseOrder(request.body);
    if (!order) return Answer(response, 400, order.error().text + "\n");
    const std::string fault = CarryOut(order.value(), folder);
    if (!fault.empty()) return Answer(response, 409, fault + "\n");
    Answer(response, 200, "done\n");
  });
}

// Who may ask at all, and what becomes of all that nobody expects.
void ServeTheRest(httplib::Server& http, const std::string& listening) {
  http.set_pre_routing_handler([listening](const Request& request, Response& response) {
    using Outcome = httplib::Server::HandlerResponse;
    if (HostAllowed(request.get_header_value("Host"), listening)) return Outcome::Unhandled;
    Answer(response, 403, "this host name isn't ours\n");
    return Outcome::Handled;
  });
  http.set_error_handler([](const Request&, Response& response) {
    if (response.body.empty()) response.set_content("nothing is here\n", kText);
  });
  http.set_exception_handler([](const Request&, Response& response, std::exception_ptr) {
    Answer(response, 500, "this request could not be served\n");
  });
}

}  // namespace

Server::Server(ServerOptions options)
    : options_(std::move(options)),
      token_(NewToken()),
      publisher_(options_.folder),
      http_(std::make_unique<httplib::Server>()) {
  SetLimits(*http_);
  http_->set_default_headers(kHeaders);
  ServeTheRest(*http_, options_.address);
  ServeFiles(*http_, publisher_);
  ServeState(*http_, publisher_);
  Json fixed = {{"control", {{"on", options_.control}}}};
  if (options_.control) {
    fixed["control"]["token"] = token_;
    for (const auto& row : board::kFaultTable) fixed["control"]["faults"].push_back(row.name);
  }
  ServeEvents(*http_, publisher_, fixed);
  if (options_.control) ServeOrders(*http_, options_.folder, token_);
}

Server::~Server() = default;

bool Server::Bind() {
  if (options_.port == 0) {
    port_ = http_->bind_to_any_port(options_.address);
    return port_ > 0;
  }
  port_ = options_.port;
  return http_->bind_to_port(options_.address, port_);
}

void Server::Serve() { http_->listen_after_bind(); }

void Server::Stop() {
  // A server that has only begun to listen takes no notice yet.
  constexpr int kMostTries = 1000;
  for (int i = 0; i < kMostTries && !http_->is_running(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  publisher_.Close();
  http_->stop();
}

}  // namespace quivord::live
