/* SPDX-License-Identifier: BSD-3-Clause */
/* Creates a file, stamps it, opens it again and checks the stamp, as a user of the installed library would. */
#include <kob_dp.h>

#include <stdio.h>
#include <string.h>

static void check(const char* what, int32_t status)
{
    if (status < 0) printf("%s: status %d\n", what, (int)status);
}

int main(int argc, char** argv)
{
    const int32_t create = 0, read_only = 2, no_domain = 0, open_only = 1;
    const int32_t group_len = 3, header_len = 9;
    int32_t name_len, status, filter_flags, filter_params[3];
    int64_t group, header;
    char version[256];

    if (argc != 2) return 2;
    name_len = (int32_t)strlen(argv[1]);

    KOB_OPEN(argv[1], &name_len, "run", &group_len, "", &no_domain, &group, &no_domain, &create, &status);
    check("create", status);
    KOB_WRITE_FILEHEADER(&group, NULL, NULL, &status);
    check("write header", status);
    KOB_CLOSE(&group, &status);
    check("close", status);

    KOB_OPEN(argv[1], &name_len, "", &no_domain, "", &no_domain, &group, &no_domain, &read_only, &status);
    check("open", status);
    KOB_H5GOPEN(&group, "kobheader", &header_len, &open_only, &header, &status);
    check("open header", status);
    KOB_READ_FILEHEADER(&header, version, &filter_flags, filter_params, &status);
    check("read header", status);
    printf("version %.6s, status %d\n", version, (int)status);
    KOB_CLOSE(&group, &status);
    check("close again", status);
    return 0;
}
