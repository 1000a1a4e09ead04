// Prints every user table of a database file as mdb-reader sees it, one JSON object a line:
//   node dump_with_mdb_reader.mjs FOLDER-WITH-NODE_MODULES FILE [PASSWORD]
// An object holds name, columns (name and type) and rows; values as exact text, null for Null.
import { readFileSync, writeSync } from "node:fs";
import { createRequire } from "node:module";
import { join, resolve } from "node:path";
import { pathToFileURL } from "node:url";

const [modules, file, password] = process.argv.slice(2);
const fromModules = createRequire(join(resolve(modules), "package.json"));
const { default: MDBReader } = await import(pathToFileURL(fromModules.resolve("mdb-reader")));

function exactText(value) {
  if (value === null || value === undefined) return null;
  if (typeof value === "string") return value;
  if (Buffer.isBuffer(value)) return value.toString("hex");
  if (value instanceof Date) return String(value.getTime());
  return Object.is(value, -0) ? "-0" : String(value);
}

function printLine(text) {
  const bytes = Buffer.from(text + "\n");
  for (let at = 0; at < bytes.length; ) at += writeSync(1, bytes, at);
}

const reader = new MDBReader(readFileSync(file), { password });
for (const name of reader.getTableNames()) {
  const table = reader.getTable(name);
  const columns = table.getColumns().map((column) => ({ name: column.name, type: column.type }));
  const rows = table.getData().map((row) => columns.map((column) => exactText(row[column.name])));
  printLine(JSON.stringify({ name, declaredRows: table.rowCount, columns, rows }));
}
