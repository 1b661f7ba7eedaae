// A real HTTP server on the loopback address, in the process of the test, with a thread for each connection. What it
// answers is decided by the test, down to the single byte. Windows only; link ws2_32.
#pragma once

#include <winsock2.h>

#include <ws2tcpip.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

struct HttpReply {
    std::string bytes;          // with the header, see HttpAnswer
    std::size_t piece = ~0ULL;  // bytes sent at a time
    int pauseMs = 0;            // between two pieces
    bool keepsOpen = false;     // never closes the connection by itself
};

inline HttpReply HttpAnswer(int status, const std::string& body, const std::string& headers = "") {
    return {.bytes = "HTTP/1.1 " + std::to_string(status) + " Status\r\nContent-Length: " +
                     std::to_string(body.size()) + "\r\nConnection: close\r\n" + headers + "\r\n" + body};
}

// A reply that is sent as events, each with a piece of the text as JSON writes it. Without `end`, the connection closes
// before the reply is complete.
inline HttpReply HttpEvents(const std::vector<std::string>& pieces, const std::string& end = "data: [DONE]\n\n") {
    HttpReply reply = {.bytes = "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\nConnection: close\r\n\r\n"};
    for (const std::string& piece : pieces)
        reply.bytes += R"(data: {"choices":[{"delta":{"content":")" + piece + "\"}}]}\n\n";
    reply.bytes += end;
    return reply;
}

class HttpServer {
public:
    using Script = std::function<HttpReply(const std::string& request)>;  // called on the connection's thread
    explicit HttpServer(Script script) : script_(std::move(script)) {
        WSADATA data;
        WSAStartup(MAKEWORD(2, 2), &data);
        listener_ = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        int size = sizeof(address);
        bind(listener_, reinterpret_cast<sockaddr*>(&address), size);
        listen(listener_, SOMAXCONN);
        getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
        port_ = ntohs(address.sin_port);
        acceptor_ = std::thread([this] { Accept(); });
    }
    ~HttpServer() {
        stopping_ = true;  // a blocked accept() does not notice on every system that its socket was closed
        acceptor_.join();
        closesocket(listener_);
        for (const SOCKET open : Copy(sockets_)) shutdown(open, SD_BOTH);
        for (std::thread& connection : connections_) connection.join();
        WSACleanup();
    }
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    std::wstring Url(const std::wstring& path) const { return L"http://127.0.0.1:" + std::to_wstring(port_) + path; }
    std::vector<std::string> Requests() { return Copy(requests_); }  // headers and bodies, as they came

private:
    template <typename T>
    std::vector<T> Copy(const std::vector<T>& from) {
        const std::lock_guard lock(mutex_);
        return from;
    }
    void Accept() {
        while (!stopping_) {
            fd_set wanted;
            FD_ZERO(&wanted);
            FD_SET(listener_, &wanted);
            timeval limit = {.tv_sec = 0, .tv_usec = 50000};
            if (select(0, &wanted, nullptr, nullptr, &limit) <= 0) continue;
            const SOCKET connection = accept(listener_, nullptr, nullptr);
            if (connection == INVALID_SOCKET) return;
            const std::lock_guard lock(mutex_);
            sockets_.push_back(connection);
            connections_.emplace_back([this, connection] { Serve(connection); });
        }
    }
    static std::string Receive(SOCKET connection) {
        std::string request;
        char block[64 << 10];  // Wine takes minutes for 20 MB in small pieces
        std::size_t wanted = ~0ULL;
        while (request.size() < wanted) {
            const int count = recv(connection, block, sizeof(block), 0);
            if (count <= 0) break;
            request.append(block, static_cast<std::size_t>(count));
            const std::size_t end = request.find("\r\n\r\n");
            if (end == std::string::npos) continue;
            const std::size_t length = request.find("Content-Length: ");
            wanted = end + 4 + (length < end ? std::stoul(request.substr(length + 16)) : 0);
        }
        return request;
    }
    void Serve(SOCKET connection) {
        const std::string request = Receive(connection);
        {
            const std::lock_guard lock(mutex_);
            requests_.push_back(request);
        }
        const HttpReply reply = script_(request);
        for (std::size_t at = 0; at < reply.bytes.size();) {
            const std::size_t count = std::min(reply.piece, reply.bytes.size() - at);
            const int sent = send(connection, reply.bytes.data() + at, static_cast<int>(count), 0);
            if (sent <= 0) break;
            at += static_cast<std::size_t>(sent);
            if (reply.pauseMs > 0) std::this_thread::sleep_for(std::chrono::milliseconds(reply.pauseMs));
        }
        char rest[256];
        while (reply.keepsOpen && recv(connection, rest, sizeof(rest), 0) > 0) {}
        shutdown(connection, SD_BOTH);
        const std::lock_guard lock(mutex_);
        std::erase(sockets_, connection);
        closesocket(connection);
    }

    Script script_;
    std::atomic<bool> stopping_ = false;
    SOCKET listener_ = INVALID_SOCKET;
    unsigned port_ = 0;
    std::mutex mutex_;
    std::vector<std::string> requests_;
    std::vector<SOCKET> sockets_;
    std::vector<std::thread> connections_;
    std::thread acceptor_;
};
