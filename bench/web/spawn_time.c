/* Wall time of whole processes, as a web server spends it on a CGI request:
 * fork, exec, run, wait. Several programs are run in turns, each with its
 * own environment, so that whatever else the machine does falls on all of
 * them alike; the median of many runs then moves far less than a mean.
 *
 *   spawn_time RUNS ENVFILE PROGRAM [ENVFILE PROGRAM ...]
 *
 * ENVFILE holds the program's environment, one NAME=VALUE per line (an empty
 * file: no environment). Standard output goes to /dev/null. Prints, per
 * program, the minimum, first quartile and median in milliseconds and the
 * ratio of its median to the first program's. */
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

enum { kMaxVars = 256 };

static char** ReadEnvironment(const char* path) {
    char** env = calloc(kMaxVars + 1, sizeof *env);
    FILE* file = fopen(path, "r");
    if (env == NULL || file == NULL) {
        fprintf(stderr, "spawn_time: cannot read %s\n", path);
        exit(2);
    }
    char line[8192];
    int n = 0;
    while (n < kMaxVars && fgets(line, sizeof line, file)) {
        line[strcspn(line, "\n")] = '\0';
        if (line[0] != '\0') env[n++] = strdup(line);
    }
    fclose(file);
    return env;
}

static double Milliseconds(const struct timespec* from, const struct timespec* to) {
    return (double)(to->tv_sec - from->tv_sec) * 1e3 + (double)(to->tv_nsec - from->tv_nsec) / 1e6;
}

static int Ascending(const void* a, const void* b) {
    double x = *(const double*)a, y = *(const double*)b;
    return (x > y) - (x < y);
}

int main(int argc, char** argv) {
    if (argc < 4 || argc % 2 != 0 || atoi(argv[1]) < 1) {
        fprintf(stderr, "usage: spawn_time RUNS ENVFILE PROGRAM [ENVFILE PROGRAM ...]\n");
        return 2;
    }
    int runs = atoi(argv[1]);
    int programs = (argc - 2) / 2;
    char*** envs = calloc((size_t)programs, sizeof *envs);
    double* times = calloc((size_t)runs * (size_t)programs, sizeof *times);
    int devnull = open("/dev/null", O_WRONLY);
    if (envs == NULL || times == NULL || devnull < 0) return 2;
    for (int p = 0; p < programs; ++p) envs[p] = ReadEnvironment(argv[2 + 2 * p]);

    for (int r = 0; r < runs; ++r) {
        for (int p = 0; p < programs; ++p) {
            char* program = argv[3 + 2 * p];
            struct timespec start, end;
            clock_gettime(CLOCK_MONOTONIC, &start);
            pid_t child = fork();
            if (child == 0) {
                dup2(devnull, 1);
                char* args[] = {program, NULL};
                execve(program, args, envs[p]);
                _exit(127);
            }
            int status = 0;
            if (child < 0 || waitpid(child, &status, 0) < 0 || !WIFEXITED(status) ||
                WEXITSTATUS(status) == 127) {
                fprintf(stderr, "spawn_time: %s did not run\n", program);
                return 1;
            }
            clock_gettime(CLOCK_MONOTONIC, &end);
            times[(size_t)p * (size_t)runs + (size_t)r] = Milliseconds(&start, &end);
        }
    }

    double first = 0;
    for (int p = 0; p < programs; ++p) {
        double* t = times + (size_t)p * (size_t)runs;
        qsort(t, (size_t)runs, sizeof *t, Ascending);
        double median = t[runs / 2];
        if (p == 0) first = median;
        printf("%-44s min %.3f  p25 %.3f  median %.3f ms  ratio %.2f\n", argv[3 + 2 * p], t[0],
               t[runs / 4], median, median / first);
    }
    return 0;
}
