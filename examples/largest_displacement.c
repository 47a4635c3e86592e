/* SPDX-License-Identifier: BSD-3-Clause */
/* Prints, for each state of a result file, the node that moves most and how far: C99, the public header alone. */

#include <inttypes.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <kob_dp.h>

/* A variable's name is a text field of 256 characters that ends with blanks. */
static int is_named(const char field[256], const char* name)
{
    return KOB_strlen(field, 256) == (int32_t)strlen(name) && strncmp(field, name, strlen(name)) == 0;
}

/* Reads one block and prints its line; nonzero when it cannot be read. */
static int print_block(int64_t results, const char* path)
{
    int32_t status = 0, whole_text = -1, open_only = 1;
    int64_t block = -1;
    KOB_H5GOPEN(&results, path, &whole_text, &open_only, &block, &status);
    if (status < 0) return 1;

    char etyp[256], etypvar[256], etypzone[256], etypframe[256];
    int32_t nent, ncoo, zoneid, fswitch, dmpswitch, nindex, indexic, fidglob, filter_flags, filter_params[2];
    int32_t attributes = 1, everything = 2;
    KOB_READ_ENTITYRESULTS(&block, &attributes, etyp, &nent, etypvar, &ncoo, etypzone, &zoneid, etypframe, &fswitch,
                           &dmpswitch, &nindex, &indexic, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, &filter_flags,
                           filter_params, &status);
    if (status < 0) return 1;
    const int parts = status == 1001 ? 2 : 1; /* the status of a reader is the block key; 1001 holds complex values */

    int bad = 0;
    if (is_named(etyp, "NODE") && is_named(etypvar, "DISP") && nindex == 1 && nent > 0 && ncoo >= 3) {
        const size_t rows = (size_t)nent;
        const size_t columns = (size_t)ncoo * (size_t)parts;
        int32_t state;
        double value;
        int32_t* node = malloc(rows * sizeof *node);
        int32_t* frame = malloc(rows * sizeof *frame);
        double* weight = malloc(rows * sizeof *weight);
        char* operators = malloc((size_t)ncoo * 256);
        double* res = malloc(rows * columns * sizeof *res);
        bad = !node || !frame || !weight || !operators || !res;
        if (!bad) {
            KOB_READ_ENTITYRESULTS(&block, &everything, etyp, &nent, etypvar, &ncoo, etypzone, &zoneid, etypframe,
                                   &fswitch, &dmpswitch, &nindex, &indexic, &state, &value, node, &fidglob, frame,
                                   operators, weight, res, &filter_flags, filter_params, &status);
            bad = status < 0;
        }
        if (!bad) {
            size_t largest = 0;
            double square = -1;
            for (size_t i = 0; i < rows; ++i) {
                double sum = 0;
                for (size_t c = 0; c < 3U * (size_t)parts; ++c) sum += res[i * columns + c] * res[i * columns + c];
                if (sum > square) {
                    square = sum;
                    largest = i;
                }
            }
            printf("%6" PRId32 "  %14.7g  %10" PRId32 "  %.5E\n", state, value, node[largest], sqrt(square));
        }
        free(node);
        free(frame);
        free(weight);
        free(operators);
        free(res);
    }
    KOB_H5GCLOSE(&block, &status);
    return bad;
}

int main(int argc, char** argv)
{
    if (argc != 2) {
        fprintf(stderr, "usage: %s FILE.kob\n", argv[0]);
        return 2;
    }
    int64_t results = 0;
    int32_t status = 0, length = (int32_t)strlen(argv[1]), none = 0, read_only = 2;
    KOB_OPEN(argv[1], &length, NULL, &none, NULL, &none, &results, &none, &read_only, &status);
    if (status != 0) return 3;

    /* The library makes the lists, since none are handed in, and the caller frees them. */
    int32_t store = 1, quiet = 0, capacity = 0, count = 0;
    int64_t path_size = 0, path_length = 0;
    int32_t* keys = NULL;
    int64_t* offsets = NULL;
    char* paths = NULL;
    kob_lookup(&results, &store, &quiet, &capacity, &path_size, &count, &path_length, &keys, &offsets, &paths, &status);

    int bad = status != 0;
    printf(" state     index value        node  largest displacement\n");
    for (int32_t i = 0; !bad && i < count; ++i) {
        if (keys[i] == 1000 || keys[i] == 1001) bad = print_block(results, paths + offsets[i]);
    }
    free(keys);
    free(offsets);
    free(paths);
    KOB_CLOSE(&results, &status);
    return bad || status != 0 ? 3 : 0;
}
