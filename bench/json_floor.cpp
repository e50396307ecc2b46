// The floor of a poll's parsing: a body parsed by simdjson alone, with a parser that is kept. Prints CPU seconds a
// parse.
//
// Usage: json_floor FILE COUNT
#include <simdjson.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    const int count = std::atoi(argv[2]);
    const simdjson::padded_string body = simdjson::padded_string::load(argv[1]);
    simdjson::dom::parser parser;
    const std::clock_t before = std::clock();
    for (int i = 0; i < count; ++i) {
        if (parser.parse(body).error() != simdjson::SUCCESS)
            return 1;
    }
    std::printf("%.9f\n", static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC / count);
    return 0;
}
