#include "net/stream_url.h"

#include "config/channel_options.h"
#include "net/base64.h"
#include "net/hex_digit.h"
#include "platform/text_field.h"

#include <charconv>
#include <cstdint>
#include <optional>
#include <system_error>
#include <utility>

namespace marvolen {
namespace {

// The components as they stand in the URL, escapes not yet decoded.
struct UrlParts {
    std::string_view scheme;
    std::string_view userName;
    std::string_view password;
    std::string_view host;
    std::string_view port;
    std::string_view path;
};

// Cuts text at the first separator; nothing when there is none.
std::optional<std::pair<std::string_view, std::string_view>> Cut(std::string_view text,
                                                                 std::string_view separator) {
    const std::size_t at = text.find(separator);
    if (at == std::string_view::npos) return std::nullopt;
    return std::pair(text.substr(0, at), text.substr(at + separator.size()));
}

std::optional<UrlParts> SplitUrl(std::string_view url) {
    const auto schemeAndRest = Cut(url, "://");
    if (!schemeAndRest) return std::nullopt;
    const auto [scheme, rest] = *schemeAndRest;

    const std::size_t pathStart = rest.find('/');
    if (pathStart == std::string_view::npos) return std::nullopt;
    const auto credentialsAndServer = Cut(rest.substr(0, pathStart), "@");
    if (!credentialsAndServer) return std::nullopt;

    const auto credentials = Cut(credentialsAndServer->first, ":");
    const auto server = Cut(credentialsAndServer->second, ":");
    if (!credentials || !server) return std::nullopt;
    const auto [host, port] = *server;

    const bool ambiguous = credentialsAndServer->second.find('@') != std::string_view::npos ||
                           port.find(':') != std::string_view::npos;
    if (ambiguous || scheme.empty() || host.empty()) return std::nullopt;
    return UrlParts{scheme, credentials->first,    credentials->second, host,
                    port,   rest.substr(pathStart)};
}

std::string DecodeEscapes(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && text.size() - i > 2) {
            const int high = HexDigit(text[i + 1]);
            const int low = HexDigit(text[i + 2]);
            if (high >= 0 && low >= 0) {
                decoded.push_back(static_cast<char>(high * 16 + low));
                i += 2;
                continue;
            }
        }
        decoded.push_back(text[i]);
    }
    return decoded;
}

// The port's number; nothing unless the text is all digits and its number a port.
std::optional<std::uint16_t> PortNumber(std::string_view text) {
    std::uint16_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number == 0) return std::nullopt;
    return number;
}

std::string_view Raw(const UrlParts& parts, UrlPart part) {
    switch (part) {
        case UrlPart::Scheme:
            return parts.scheme;
        case UrlPart::Host:
            return parts.host;
        case UrlPart::UserName:
            return parts.userName;
        case UrlPart::Password:
            return parts.password;
        case UrlPart::Port:
            return parts.port;
        case UrlPart::Path:
            return parts.path;
    }
    return {};
}

}  // namespace

std::string FormStreamUrl(const ChannelInfo& info) {
    std::string url = "http://";
    url.append(FieldText(info.userName)).append(":").append(FieldText(info.password));
    url.append("@").append(FieldText(info.host)).append(":").append(FieldText(info.port));
    url.append("/getimage?")
        .append(CameraOption(info.cameraIndex).query)
        .append(SizeOption(info.sizeIndex).query)
        .append(RateOptionRow(info.rateIndex).query);
    return url;
}

bool CrackUrlPart(std::string_view url, UrlPart part, std::string& output) {
    const auto parts = SplitUrl(url);
    if (!parts) return false;
    // A URL whose port is no port doesn't split, whichever component is asked for.
    const auto port = PortNumber(DecodeEscapes(parts->port));
    if (!port) return false;

    std::string component =
        part == UrlPart::Port ? std::to_string(*port) : DecodeEscapes(Raw(*parts, part));
    if (component.size() > kMaxUrlComponent) return false;
    // Whoever takes the text up to its NUL would get another host or path than asked for.
    if (component.find('\0') != std::string::npos) return false;
    output = std::move(component);
    return true;
}

void EscapePath(std::string_view input, std::string& output) {
    for (const char byte : input) {
        if (byte == ' ') {
            output.append("%20");
        } else {
            output.push_back(byte);
        }
    }
}

bool FormRequest(std::string_view url, std::string& request) {
    std::string path;
    std::string userName;
    std::string password;
    if (!CrackUrlPart(url, UrlPart::Path, path) ||
        !CrackUrlPart(url, UrlPart::UserName, userName) ||
        !CrackUrlPart(url, UrlPart::Password, password)) {
        return false;
    }
    std::string text = "GET ";
    EscapePath(path, text);
    text.append(" HTTP/1.0\r\nUser-Agent: ActiveX(Tallivox)\r\nAuthorization: Basic ");
    EncodeBase64(userName + ":" + password, text);
    text.append("\r\n\r\n");
    request = std::move(text);
    return true;
}

}  // namespace marvolen
