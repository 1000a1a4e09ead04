"""Update files for the end-to-end tests, and a product table seen through paptool."""

import subprocess

HEADER = """[VERSION]
3.2

[DATE]
20260105

[ASSORTMENTCODE]
E2E

[ASSORTMENTDESCRIPTION]
Sections for the end-to-end tests

[SUPPLIERCODE]
E2ESUP

[SUPPLIERDESCRIPTION]
Supplier for the end-to-end tests

[PrcDate]
20260105

[Remark]

[NEW SUPPLIER]
"E2ESUP","Supplier for the end-to-end tests",0,0

[NEW ASSORTMENT]
"E2E","Sections for the end-to-end tests",1,1,False,False,1,""

[NEW ASSSUPPL]
"E2E","E2ESUP",1

[NEW SERIE]
"E2ESER","Series for the end-to-end tests",7.85,False,""

"""

TABLES = ("Supplier", "Assortment", "Ass_Suppl", "Serie", "Article", "ArtDimL", "ArtPrice")


def write_update(path, codes):
    """Writes an update with an article and a price for each code."""
    lines = ["[NEW ARTICLE]"]
    lines += [f'"E2ESER","{code}","Section {code}","",{100 + i % 300},60,60,6,6,4,0,0,1000,1000,0,0,0,0,""'
              for i, code in enumerate(codes)]
    lines += ["", "[UPDATE PRICEDATA]"]
    lines += [f'"{code}",{700 + i}.25,1,2,3,4,"","","S{i}"' for i, code in enumerate(codes)]
    text = HEADER + "\n".join(lines) + "\n\n"
    path.write_bytes(text.replace("\n", "\r\n").encode("cp1252"))


class Table:
    def __init__(self, paptool, path):
        self.paptool, self.path = paptool, path

    def run(self, *arguments, **how):
        return self.start([self.paptool, *arguments, "--table", str(self.path)], **how)

    @staticmethod
    def start(command, **how):
        return subprocess.run(command, capture_output=True, text=True, encoding="utf-8", **how)

    def apply_command(self, update):
        """Applies an update without a backup; the log lies beside the table."""
        return [self.paptool, "apply", "--no-backup", "--log", str(self.path.with_suffix(".log")),
                "--table", str(self.path), str(update)]

    def apply(self, update, **how):
        return self.start(self.apply_command(update), **how)

    def rows(self, table):
        """A dictionary a row; ends the program when the table cannot be read."""
        done = self.run("rows", table)
        if done.returncode != 0:
            raise SystemExit(f"{table} cannot be read: {done.stderr}")
        lines = done.stdout.splitlines()
        names = lines[0].split("\t")
        return [dict(zip(names, line.split("\t"))) for line in lines[1:]]

    def contents(self):
        """What the tables of an import hold, whatever the order of their rows."""
        return {name: sorted(map(str, self.rows(name))) for name in TABLES}

    def unpriced(self, codes):
        """The codes that have no article, or an article without a price."""
        priced = {row["fkArticle"] for row in self.rows("ArtPrice")}
        return set(codes) - {row["Code"] for row in self.rows("Article") if row["ID"] in priced}


def demo_table(paptool, folder):
    """The product table of a new demo installation below the folder."""
    subprocess.run([paptool, "demo", str(folder / "demo")], check=True, stdout=subprocess.DEVNULL)
    return Table(paptool, folder / "demo" / "Orv.pt")
