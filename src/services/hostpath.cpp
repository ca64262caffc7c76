// hostpath.cpp - from the application's paths to the host's and back.
//
// The memory of spellings maps a folded name to the host's spelling of it. Such a key is either an absolute path in lower case
// ("/home/op/map.tif") or begins with an alias ("~2/map.tif"). An alias stands for a directory, or for a single file whose
// name alone is too long for the records ("~3.tif").
#include "services/hostpath.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <dirent.h>
#include <fnmatch.h>
#include <map>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

struct path_memory {
    std::map<std::string, std::string> spellings;
    std::vector<std::string> aliases;  // host paths; alias ~1 is the first
    std::string data_directory;
    bool data_directory_known = false;
};

static path_memory memory;

static constexpr char DATA_DRIVE_NAME[] = "tarn";   // c:\tarn

// --- small parts ------------------------------------------------------------------------------------------------

// ASCII letters only: the bytes of other alphabets pass through.
static char fold(char c)
{
    return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
}

static std::string folded(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), fold);
    return text;
}

static bool is_utf8(const std::string &text)
{
    int following = 0;
    for (const char c : text) {
        const uint8_t byte = uint8_t(c);
        const bool continues = (byte & 0xC0) == 0x80;
        if (continues != (following > 0) || byte >= 0xF8)
            return false;
        following = continues ? following - 1 : byte < 0xC0 ? 0 : byte < 0xE0 ? 1 : byte < 0xF0 ? 2 : 3;
    }
    return following == 0;
}

static std::string utf8_of_latin1(const std::string &text)
{
    std::string utf8;
    for (const char c : text) {
        const uint8_t byte = uint8_t(c);
        if (byte >= 0x80)
            utf8 += char(0xC0 | byte >> 6);
        utf8 += char(byte < 0x80 ? byte : 0x80 | (byte & 0x3F));
    }
    return utf8;
}

static bool is_separator(char c)
{
    return c == '/' || c == '\\';
}

static bool exists(const std::string &host)
{
    struct stat status;
    return stat(host.c_str(), &status) == 0;
}

static bool is_directory(const std::string &host)
{
    struct stat status;
    return stat(host.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

static std::string current_directory()
{
    char directory[HOST_PATH_MAX];
    return getcwd(directory, sizeof directory) ? directory : "/";
}

static std::vector<std::string> components_of(const std::string &path, bool backslashes)
{
    std::vector<std::string> components(1);
    for (const char c : path) {
        if (c == '/' || (backslashes && c == '\\'))
            components.emplace_back();
        else
            components.back() += c;
    }
    std::erase(components, "");
    return components;
}

static std::string joined(const std::string &directory, const std::string &name)
{
    if (directory.empty())
        return name;
    return directory.back() == '/' ? directory + name : directory + "/" + name;
}

static int give(const std::string &text, char *out, int size)
{
    if (int64_t(text.size()) >= size)
        return -1;
    memcpy(out, text.c_str(), text.size() + 1);
    return 0;
}

// --- data directory ---------------------------------------------------------------------------------------------

static std::string executable_directory()
{
    char path[HOST_PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    const std::string executable(path, length > 0 ? size_t(length) : 0);
    return executable.substr(0, executable.rfind('/') + 1);
}

static std::string find_data_directory()
{
    const std::string beside = executable_directory();
    std::vector<std::string> places;
    if (!beside.empty())
        places = { beside + "share/tarn", beside + "../share/tarn", beside + "../share/kestrel/tarn" };
#ifdef KESTREL_DATA_PREFIX
    places.push_back(KESTREL_DATA_PREFIX "/share/kestrel/tarn");
#endif
    for (const std::string &place : places)
        if (is_directory(place))
            return place;
    return "";
}

const char *host_data_directory()
{
    if (!memory.data_directory_known)
        host_set_data_directory(find_data_directory().c_str());
    return memory.data_directory.c_str();
}

void host_set_data_directory(const char *directory)
{
    memory.data_directory = directory;
    memory.data_directory_known = true;
}

void host_path_reset()
{
    memory = {};
}

// --- from the application to the host ---------------------------------------------------------------------------

// A path on its way from component to component.
struct walk {
    std::string host;                  // "" is the current directory
    std::string key;                   // folded, absolute or from an alias; no '/' at its end
    bool missing;                      // what comes from here on does not exist
    bool typed;                        // a name that exists as written is meant, whatever was spelled like it before
};

static void key_up(std::string *key)
{
    const size_t slash = key->rfind('/');
    key->erase(slash == std::string::npos ? key->size() : slash);
}

// The entry of a directory that is `name` but for the case of letters; of several the first in order. "" when there is none.
static std::string entry_without_case(const std::string &directory, const std::string &name)
{
    DIR *const stream = opendir(directory.empty() ? "." : directory.c_str());
    if (!stream)
        return "";
    const std::string wanted = folded(name);
    std::string found;
    while (const dirent *entry = readdir(stream))
        if (folded(entry->d_name) == wanted && (found.empty() || entry->d_name < found))
            found = entry->d_name;
    closedir(stream);
    return found;
}

// What the operator once wrote for a folded name; null when nothing is known. A name that is not folded is meant as it stands.
static const std::string *remembered(const std::string &key, const std::string &name)
{
    const auto known = memory.spellings.find(key);
    return known != memory.spellings.end() && folded(name) == name ? &known->second : nullptr;
}

static std::string last_component(const std::string &host)
{
    return host.substr(host.rfind('/') + 1);
}

static void step(walk *at, const std::string &written)
{
    // Typed text is Latin-1, where the names of the host's files are UTF-8 as a rule.
    const std::string name = is_utf8(written) || exists(joined(at->host, written)) ? written : utf8_of_latin1(written);
    if (name == ".")
        return;
    if (name == "..") {
        at->host = joined(at->host, name);
        key_up(&at->key);
        return;
    }
    at->key += "/" + folded(name);
    const std::string as_named = joined(at->host, name);
    const std::string *const whole = at->typed && exists(as_named) ? nullptr : remembered(at->key, name);
    const std::string as_given = whole ? joined(at->host, last_component(*whole)) : as_named;
    if (!at->missing) {
        for (const std::string &candidate : { whole ? *whole : as_given, as_given, as_named }) {
            if (exists(candidate)) {
                at->host = candidate;
                return;
            }
        }
        const std::string other = entry_without_case(at->host, name);
        at->missing = other.empty();
        if (!at->missing) {
            at->host = joined(at->host, other);
            return;
        }
    }
    at->host = as_given;
}

// "~12" or "~12.tif": the number, when such an alias was given; else 0.
static size_t alias_of(const std::string &component)
{
    if (component.size() < 2 || component[0] != '~')
        return 0;
    size_t number = 0, i = 1;
    for (; i < component.size() && component[i] >= '0' && component[i] <= '9' && number < 1000000; i++)
        number = number * 10 + size_t(component[i] - '0');
    const bool whole = i > 1 && (i == component.size() || component[i] == '.');
    return whole && number <= memory.aliases.size() ? number : 0;
}

// Without its drive: "c:" is the root, on whatever drive the home system had its programs.
static std::string without_drive(const char *name, bool *absolute_out)
{
    const bool drive = fold(name[0]) == 'c' && name[1] == ':';
    const char *const path = drive ? name + 2 : name;
    *absolute_out = drive || is_separator(path[0]);
    return path;
}

// Where the walk begins, and how many components that takes.
static size_t first_step(walk *at, const std::vector<std::string> &components, bool absolute)
{
    if (!absolute) {
        const size_t alias = components.empty() ? 0 : alias_of(components[0]);
        *at = { alias ? memory.aliases[alias - 1] : "", alias ? "~" + std::to_string(alias) : folded(current_directory()), false, at->typed };
        if (at->key == "/")
            at->key = "";
        return alias ? 1 : 0;
    }
    *at = { "/", "", false, at->typed };
    const bool data = !components.empty() && folded(components[0]) == DATA_DRIVE_NAME && !is_directory("/tarn")
                      && host_data_directory()[0];
    if (!data)
        return 0;
    *at = { host_data_directory(), std::string("/") + DATA_DRIVE_NAME, false, at->typed };
    return 1;
}

static int resolve(const char *name, bool typed, char *out, int size)
{
    bool absolute;
    const std::vector<std::string> components = components_of(without_drive(name, &absolute), true);
    walk at {};
    at.typed = typed;
    for (size_t i = first_step(&at, components, absolute); i < components.size(); i++)
        step(&at, components[i]);
    // "." and what leads back to the current directory leave no component behind.
    if (at.host.empty() && !components.empty())
        at.host = ".";
    if (give(at.host, out, size) != 0)
        return -1;
    return exists(at.host) ? 1 : 0;
}

int host_path(const char *name, char *out, int size)
{
    return resolve(name, false, out, size);
}

int host_path_typed(const char *name, char *out, int size)
{
    return resolve(name, true, out, size);
}

int host_path_resolver(const char *name, char *out, int size)
{
    // A file that is yet to be made has a path as well.
    return host_path(name, out, size) >= 0;
}

// --- from the host to the application ---------------------------------------------------------------------------

struct spelled {
    std::string key, host;
};

// The key of each directory on the way to a host path, and of the path itself, with the host's spelling.
static std::vector<spelled> spellings_of(const std::string &host, const std::string &start_key, const std::string &start_host)
{
    std::vector<spelled> way;
    spelled at { start_key, start_host };
    for (const std::string &component : components_of(host, false)) {
        if (component == ".")
            continue;
        at.host = joined(at.host, component);
        if (component == "..") {
            key_up(&at.key);
            continue;
        }
        at.key += "/" + folded(component);
        way.push_back(at);
    }
    return way;
}

// A name that already means another file of the same letters in other cases.
static bool contradicts(const spelled &name)
{
    const auto known = memory.spellings.find(name.key);
    return known != memory.spellings.end() && known->second != name.host && exists(known->second);
}

static std::string alias_for(const std::string &host)
{
    const auto known = std::find(memory.aliases.begin(), memory.aliases.end(), host);
    const size_t number = size_t(known - memory.aliases.begin()) + 1;
    if (known == memory.aliases.end())
        memory.aliases.push_back(host);
    return "~" + std::to_string(number);
}

static std::string with_backslashes(std::string path)
{
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

// "~1\map.tif" for the file in its directory; "~2.tif" for the file itself when its name is too long or holds a '\'.
static std::string aliased(const std::string &host, int size)
{
    const size_t slash = host.rfind('/');
    const std::string directory = host.substr(0, slash == 0 ? 1 : slash), name = host.substr(slash + 1);
    const std::string alias = alias_for(directory);
    const std::string key = alias + "/" + folded(name);
    if (name.find('\\') == std::string::npos && int64_t(key.size()) < size && !contradicts({ key, host })) {
        memory.spellings[key] = host;
        return with_backslashes(alias + "/" + name);
    }
    const size_t dot = name.rfind('.');
    return alias_for(host) + (dot != std::string::npos && name.size() - dot <= 5 ? name.substr(dot) : "");
}

int host_path_to_app(const char *host, char *out, int size)
{
    const std::string current = current_directory();
    const std::string given = host;
    const std::string absolute = given.rfind('/', 0) == 0 ? given : joined(current, given);
    const std::vector<spelled> way = spellings_of(absolute, "", "/");
    if (given.empty() || way.empty())
        return give(given.empty() ? "" : "\\", out, size);

    const bool plain = given.find('\\') == std::string::npos && std::none_of(way.begin(), way.end(), contradicts);
    if (plain)
        for (const spelled &name : way)
            memory.spellings[name.key] = name.host;
    const std::string prefix = joined(current, "");
    const bool inside = absolute.rfind(prefix, 0) == 0 && absolute.size() > prefix.size();
    if (plain && give(with_backslashes(given), out, size) == 0)
        return 0;
    if (plain && inside && give(with_backslashes(absolute.substr(prefix.size())), out, size) == 0)
        return 0;
    return give(aliased(way.back().host, size), out, size);
}

// --- normal form ------------------------------------------------------------------------------------------------

static std::string normal_form(const std::string &part)
{
    const bool absolute = !part.empty() && is_separator(part.front());
    const bool directory = part.size() > 1 && is_separator(part.back());
    std::vector<std::string> kept;
    for (const std::string &component : components_of(part, true)) {
        const bool can_go_up = !kept.empty() && kept.back() != "..";
        if (component == ".." && can_go_up)
            kept.pop_back();
        else if (component != "." && !(component == ".." && absolute))
            kept.push_back(component);
    }
    std::string normal = absolute ? "\\" : "";
    for (size_t i = 0; i < kept.size(); i++)
        normal += (i ? "\\" : "") + kept[i];
    if (directory && !kept.empty())
        normal += '\\';
    return normal.empty() && !part.empty() ? "." : normal;
}

void path_normalise(char *path)
{
    const std::string whole = folded(path);
    const size_t colon = whole.rfind(':');
    const size_t start = colon == std::string::npos ? 0 : colon + 1;
    const std::string normal = with_backslashes(whole.substr(0, start)) + normal_form(whole.substr(start));
    memcpy(path, normal.c_str(), normal.size() + 1);
}

// --- questions --------------------------------------------------------------------------------------------------

static std::string existing_path(const char *name)
{
    char host[HOST_PATH_MAX];
    return host_path(name, host, int(sizeof host)) == 1 ? host : "";
}

int host_is_directory(const char *name)
{
    return is_directory(existing_path(name));
}

int host_file_exists(const char *name)
{
    const std::string host = existing_path(name);
    return !host.empty() && !is_directory(host);
}

int host_is_readable(const char *name)
{
    const std::string host = existing_path(name);
    return !host.empty() && !is_directory(host) && access(host.c_str(), R_OK) == 0;
}

// --- listing ----------------------------------------------------------------------------------------------------

struct listed_entry {
    std::string name;
    bool directory;
};

static bool matches(const std::string &name, const std::string &patterns)
{
    size_t start = 0;
    while (start <= patterns.size()) {
        const size_t end = std::min(patterns.find_first_of(";,", start), patterns.size());
        std::string pattern = patterns.substr(start, end - start);
        const size_t first = pattern.find_first_not_of(' '), last = pattern.find_last_not_of(' ');
        pattern = first == std::string::npos ? "" : pattern.substr(first, last - first + 1);
        // The home system's "all files": also those without a dot.
        if (patterns.empty() || pattern == "*.*" || fnmatch(pattern.c_str(), name.c_str(), FNM_CASEFOLD) == 0)
            return true;
        start = end + 1;
    }
    return false;
}

static bool comes_before(const listed_entry &a, const listed_entry &b)
{
    if (a.directory != b.directory)
        return a.directory;
    const std::string x = folded(a.name), y = folded(b.name);
    return x != y ? x < y : a.name < b.name;
}

int host_list_directory(const char *name, const char *pattern, void (*each)(const char *entry, int is_directory, void *data), void *data)
{
    char host[HOST_PATH_MAX];
    if (host_path(*name ? name : ".", host, int(sizeof host)) != 1)
        return -1;
    DIR *const stream = opendir(host);
    if (!stream)
        return -1;
    std::vector<listed_entry> entries;
    while (const dirent *entry = readdir(stream)) {
        const std::string entry_name = entry->d_name;
        if (entry_name[0] == '.')
            continue;
        const bool directory = is_directory(joined(host, entry_name));
        if (directory || matches(entry_name, pattern))
            entries.push_back({ directory ? entry_name + "\\" : entry_name, directory });
    }
    closedir(stream);
    std::sort(entries.begin(), entries.end(), comes_before);
    for (const listed_entry &entry : entries)
        each(entry.name.c_str(), entry.directory, data);
    return int(entries.size());
}
